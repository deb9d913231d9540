#ifndef CoastSlots_H
#define CoastSlots_H

// Seen by the sources of this module; the private header that includes it doesn't find it by itself.

#define SlotCount 64

class CoastSlots
{
public:
    int Take(unsigned long iKey);

private:
    unsigned long _keys[SlotCount];
};

#endif
