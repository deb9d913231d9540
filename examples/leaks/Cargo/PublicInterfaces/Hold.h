#pragma once

// A hold forgets crates, and counts those that are ashore.
class Hold {
public:
    Hold();
    ~Hold();
    void Load(int crates);
    int Weigh() const;
    int CountAshore() const;

private:
    int* weights;
    int size = 0;
};
