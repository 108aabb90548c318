#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/Assertion.h"
#include "foundation/NSException.h"

using testing::ThrowsMessage;

TEST(NSException, CarriesNameAndReason) {
  using foundation::NSInvalidArgumentException, foundation::NSMallocException;
  EXPECT_THAT([] { foundation::raiseArgumentException("fileUrl"); },
              ThrowsMessage<NSInvalidArgumentException>("Method argument error: fileUrl"));
  EXPECT_THAT([] { foundation::raiseArgumentException(nullptr); },
              ThrowsMessage<NSInvalidArgumentException>("Method argument error: (NONE)"));
  EXPECT_THAT([] { foundation::raiseMallocException("buffer"); },
              ThrowsMessage<NSMallocException>(
                  "Memory allocation error. Attempt allocate memory for (buffer)."));
  EXPECT_EQ(NSInvalidArgumentException("").name(), "NSInvalidArgumentException");
  EXPECT_EQ(NSMallocException("").name(), "NSMallocException");
  EXPECT_EQ(foundation::NSRangeException("").name(), "NSRangeException");
}

TEST(AssertionDeathTest, PrintsAndAborts) {
  EXPECT_DEATH(ZARVO_ASSERT(1 == 2), R"(^Assertion failed: \(1 == 2\), .*NSExceptionTest\.cpp:)");
}
