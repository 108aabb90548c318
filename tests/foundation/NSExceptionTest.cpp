#include <gtest/gtest.h>

#include "foundation/Assertion.h"
#include "foundation/NSException.h"

using foundation::NSException;

TEST(NSException, CarriesNameAndReason) {
  struct Row {
    void (*raise)();
    std::string name;
    std::string reason;
  };
  const Row rows[] = {
      {[] { foundation::raiseArgumentException("fileUrl"); }, "NSInvalidArgumentException",
       "Method argument error: fileUrl"},
      {[] { foundation::raiseArgumentException(nullptr); }, "NSInvalidArgumentException",
       "Method argument error: (NONE)"},
      {[] { foundation::raiseMallocException("buffer"); }, "NSMallocException",
       "Memory allocation error. Attempt allocate memory for (buffer)."},
      {[] { foundation::raise<foundation::NSRangeException>("r"); }, "NSRangeException", "r"},
      {[] { foundation::raise<foundation::NSGenericException>("g"); }, "NSGenericException", "g"},
  };
  for (const Row& row : rows) {
    try {
      row.raise();
      ADD_FAILURE() << row.name << " was not raised";
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), row.name);
      EXPECT_EQ(exception.description(), row.reason);
    }
  }
}

TEST(AssertionDeathTest, PrintsAndAborts) {
  EXPECT_DEATH(ZARVO_ASSERT(1 == 2), R"(^Assertion failed: \(1 == 2\), .*NSExceptionTest\.cpp:)");
}
