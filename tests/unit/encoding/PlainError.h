/// @file PlainError.h
/// The expectation of an error that carries nothing but its message.
#pragma once

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <typeinfo>

namespace encodingtest {

/// Expects a kel::CError with this message, without a domain, a code, parameters or a cause.
template <class Action>
void expectPlainError(Action action, const kel::String& message) {
    try {
        action();
        ADD_FAILURE() << "no error '" << message << "'";
    } catch (const kel::CError& error) {
        EXPECT_EQ(typeid(error), typeid(kel::CError));
        EXPECT_EQ(error.getMessage(), message);
        EXPECT_EQ(error.getCodeDomain(), "");
        EXPECT_EQ(error.getCode(), -1);
        EXPECT_TRUE(error.getParams().isEmpty());
        EXPECT_EQ(error.getCause().get(), nullptr);
    }
}

} // namespace encodingtest
