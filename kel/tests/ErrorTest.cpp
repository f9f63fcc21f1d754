#include "kel/Error.h"
#include "LogCapture.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using kel::CError;
using kel::CInvalidArgError;
using kel::CProps;
using kel::CStdExceptionError;
using kel::P;
using kel::PC;
using kel::String;

/// Whether that is the dynamic type, not just a base of it.
template <class Type>
bool isExactly(const CError& error) {
    return typeid(error) == typeid(Type);
}

TEST(Error, HasOnlyAMessageByDefault) {
    const CError error("It failed.");
    EXPECT_EQ(error.getMessage(), "It failed.");
    EXPECT_EQ(error.getCodeDomain(), "");
    EXPECT_EQ(error.getCode(), -1);
    EXPECT_TRUE(error.getParams().isEmpty());
    EXPECT_EQ(error.getCause().get(), nullptr);
}

TEST(Error, KeepsAllItIsGiven) {
    const PC<CError> cause = new CError("The cause.");
    const CProps params = CProps().add("url", "ftp://example.org/");
    const CError error("It failed.", "curl", 9000000000, params, cause);
    EXPECT_EQ(error.getMessage(), "It failed.");
    EXPECT_EQ(error.getCodeDomain(), "curl");
    EXPECT_EQ(error.getCode(), 9000000000);
    EXPECT_EQ(error.getParams(), params);
    EXPECT_EQ(error.getCause().get(), cause.get());
}

TEST(Error, TellsItsMessageInUTF8) {
    EXPECT_STREQ(CError(L"Stra\u00DFe \u20AC").what(), "Stra\xC3\x9F"
                                                       "e \xE2\x82\xAC");
    EXPECT_STREQ(CError("").what(), "");
}

TEST(Error, KeepsItsCauseAlive) {
    P<CError> cause = new CError("The cause.");
    const CError error("It failed.", "", -1, CProps(), cause);
    cause = nullptr;
    EXPECT_EQ(error.getCause()->getMessage(), "The cause.");
}

TEST(Error, CopiesEverythingIntoItsClone) {
    const PC<CError> cause = new CError("The cause.");
    const CError error("It failed.", "curl", 7, CProps().add("a", "b"), cause);
    const P<CError> clone = error.clone();
    EXPECT_NE(clone.get(), &error);
    EXPECT_STREQ(clone->what(), "It failed.");
    EXPECT_EQ(clone->getMessage(), "It failed.");
    EXPECT_EQ(clone->getCodeDomain(), "curl");
    EXPECT_EQ(clone->getCode(), 7);
    EXPECT_EQ(clone->getParams(), CProps().add("a", "b"));
    EXPECT_EQ(clone->getCause().get(), cause.get());
}

TEST(Error, ThrowsACopyOfItself) {
    const P<CError> error = new CError("It failed.", "curl", 7);
    try {
        error->throwClone();
    } catch (const CError& thrown) {
        EXPECT_NE(&thrown, error.get());
        EXPECT_TRUE(isExactly<CError>(thrown));
        EXPECT_EQ(thrown.getMessage(), "It failed.");
        EXPECT_EQ(thrown.getCode(), 7);
    }
}

TEST(Error, CanBeAssigned) {
    CError error("One.", "a", 1);
    error = CError("Two.", "b", 2, CProps().add("k", "v"));
    EXPECT_STREQ(error.what(), "Two.");
    EXPECT_EQ(error.getMessage(), "Two.");
    EXPECT_EQ(error.getCodeDomain(), "b");
    EXPECT_EQ(error.getCode(), 2);
    EXPECT_EQ(error.getParams(), CProps().add("k", "v"));
}

TEST(Error, IsCaughtAsAStandardException) {
    try {
        throw CError("It failed.");
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "It failed.");
    }
}

TEST(InvalidArgError, KeepsTheFunctionOutOfItsMessage) {
    const CInvalidArgError error("CNetHeaders::splitEntry", "no colon", CProps().add("entry", "x"));
    EXPECT_EQ(error.getFunction(), "CNetHeaders::splitEntry");
    EXPECT_EQ(error.getMessage(), "no colon");
    EXPECT_STREQ(error.what(), "no colon");
    EXPECT_EQ(error.getCodeDomain(), "");
    EXPECT_EQ(error.getCode(), -1);
    EXPECT_EQ(error.getParams(), CProps().add("entry", "x"));
    EXPECT_EQ(error.getCause().get(), nullptr);
}

TEST(InvalidArgError, StaysWhatItIsWhenClonedOrThrown) {
    const CInvalidArgError original("f", "bad");
    const CError& error = original;
    const P<CError> clone = error.clone();
    const auto* cloned = dynamic_cast<const CInvalidArgError*>(clone.get());
    ASSERT_NE(cloned, nullptr);
    EXPECT_EQ(cloned->getFunction(), "f");
    EXPECT_EQ(cloned->getMessage(), "bad");
    EXPECT_THROW(error.throwClone(), CInvalidArgError);
    EXPECT_THROW(clone->throwClone(), CInvalidArgError);
}

TEST(StdExceptionError, TakesTheTextOfTheException) {
    const CStdExceptionError error(std::runtime_error("out of l\xC3\xB6ve"));
    EXPECT_EQ(error.getMessage(), L"out of l\u00F6ve");
    EXPECT_EQ(error.getCodeDomain(), "");
    EXPECT_EQ(error.getCode(), -1);
}

TEST(StdExceptionError, ReplacesWhatIsNoUTF8) {
    const CStdExceptionError error(std::runtime_error("l\xF6ve"));
    EXPECT_EQ(error.getMessage(), L"l\uFFFDve");
}

TEST(StdExceptionError, StaysWhatItIsWhenClonedOrThrown) {
    const CStdExceptionError original(std::runtime_error("bad"));
    const CError& error = original;
    const P<CError> clone = error.clone();
    EXPECT_NE(dynamic_cast<const CStdExceptionError*>(clone.get()), nullptr);
    EXPECT_EQ(clone->getMessage(), "bad");
    EXPECT_THROW(error.throwClone(), CStdExceptionError);
}

TEST(StdExceptionError, IsMadeOnlyFromForeignExceptions) {
    const std::runtime_error foreign("foreign");
    const P<CError> wrapped = CStdExceptionError::exceptionToError(foreign);
    EXPECT_TRUE(isExactly<CStdExceptionError>(*wrapped));
    EXPECT_EQ(wrapped->getMessage(), "foreign");

    const CInvalidArgError own("f", "own");
    const P<CError> cloned = CStdExceptionError::exceptionToError(own);
    EXPECT_NE(cloned.get(), &own);
    EXPECT_TRUE(isExactly<CInvalidArgError>(*cloned));
    EXPECT_EQ(cloned->getMessage(), "own");
}

template <class Exception>
P<CError> throwAndConvert(const Exception& exception) {
    try {
        throw exception;
    } catch (...) {
        return CStdExceptionError::currentExceptionToError();
    }
}

TEST(StdExceptionError, IsMadeFromTheExceptionBeingHandled) {
    const P<CError> own = throwAndConvert(CInvalidArgError("f", "own"));
    EXPECT_TRUE(isExactly<CInvalidArgError>(*own));
    EXPECT_EQ(own->getMessage(), "own");

    const P<CError> foreign = throwAndConvert(std::out_of_range("foreign"));
    EXPECT_TRUE(isExactly<CStdExceptionError>(*foreign));
    EXPECT_EQ(foreign->getMessage(), "foreign");

    const P<CError> unknown = throwAndConvert(42);
    EXPECT_TRUE(isExactly<CError>(*unknown));
    EXPECT_EQ(unknown->getMessage(), "Unknown exception.");
    EXPECT_EQ(unknown->getCode(), -1);
}

TEST(ExceptionInDestructor, IsReportedToTheLogAndSwallowed) {
    struct CFailing {
        ~CFailing() {
            try {
                throw CError("teardown failed");
            } catch (...) {
                kel::onExceptionInDestructorIgnored("CFailing");
            }
        }
    };
    const CLogCapture log;
    { const CFailing failing; }
    EXPECT_EQ(log.getLines(), std::vector<std::string>{
                                  "error: Exception in destructor of CFailing (ignored).: teardown failed"});
}

TEST(ExceptionInDestructor, MayBeOfAnyType) {
    const CLogCapture log;
    try {
        throw 1;
    } catch (...) {
        kel::onExceptionInDestructorIgnored("CStranger");
    }
    EXPECT_EQ(log.getLines(),
              std::vector<std::string>{
                  "error: Exception in destructor of CStranger (ignored).: Unknown exception."});
}

} // namespace
