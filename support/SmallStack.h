#pragma once

#include <cstddef>
#include <functional>
#include <pthread.h>

#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t smallStack = 4 << 20; // the sanitizer makes each frame several times as large
#else
constexpr std::size_t smallStack = 512 << 10;
#endif

inline void RunOnSmallStack(std::function<void()> work, std::size_t stackSize = smallStack) {
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackSize), 0);
    const auto run = [](void* function) -> void* {
        (*static_cast<std::function<void()>*>(function))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}
