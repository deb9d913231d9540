// A race, a circle of locks, a lock that is destroyed while it is held, and a thread that nobody joins.
#include <pthread.h>

namespace {

struct Hold {
    int crates = 0;
    void Load(int number) { crates += number; }
};

Hold hold;
pthread_mutex_t crane = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t quay = PTHREAD_MUTEX_INITIALIZER;

void* Work(void*) {
    hold.Load(1);
    return nullptr;
}

void* Idle(void*) {
    return nullptr;
}

void Lock(pthread_mutex_t* first, pthread_mutex_t* second) {
    pthread_mutex_lock(first);
    pthread_mutex_lock(second);
    pthread_mutex_unlock(second);
    pthread_mutex_unlock(first);
}

} // namespace

int main() {
    pthread_t worker;
    pthread_create(&worker, nullptr, Work, nullptr);
    hold.Load(2);
    pthread_join(worker, nullptr);
    Lock(&crane, &quay);
    Lock(&quay, &crane);
    pthread_mutex_lock(&crane);
    pthread_mutex_destroy(&crane);
    pthread_create(&worker, nullptr, Idle, nullptr);
    return 0;
}
