#include "SystemThreads.h"

#include <gtest/gtest.h>

#include <pthread.h>

struct CNoMoreThreads::State {
    pthread_attr_t before;
};

// Makes new threads ask for more stack than any system has.
CNoMoreThreads::CNoMoreThreads() : state_(new State()) {
    EXPECT_EQ(::pthread_getattr_default_np(&state_->before), 0);
    pthread_attr_t hugeStack;
    EXPECT_EQ(::pthread_attr_init(&hugeStack), 0);
    EXPECT_EQ(::pthread_attr_setstacksize(&hugeStack, std::size_t{1} << 60U), 0);
    EXPECT_EQ(::pthread_setattr_default_np(&hugeStack), 0);
    ::pthread_attr_destroy(&hugeStack);
}

CNoMoreThreads::~CNoMoreThreads() {
    EXPECT_EQ(::pthread_setattr_default_np(&state_->before), 0);
    ::pthread_attr_destroy(&state_->before);
}

std::string getSystemThreadName() {
    char name[64] = {};
    EXPECT_EQ(::pthread_getname_np(::pthread_self(), name, sizeof(name)), 0);
    return name;
}

std::size_t getThreadNameLimit() { return 15; }
