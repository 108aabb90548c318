#include <gtest/gtest.h>

#include "ZDomain/ZDProductInfo.h"
#include "foundation/archive/PropertyList.h"
#include "platform/Bundle.h"
#include "platform/FileSystem.h"

// The program is built with the list, from the one place or the other.
TEST(InformationList, IsTheProgramsOwn) {
  const auto list =
      foundation::PropertyList::propertyListWithData(*platform::FileSystem::readFile(LIST));
  const foundation::Value own(platform::Bundle::production().infoDictionary());
  EXPECT_EQ(own, *list) << own.description();
  EXPECT_EQ(ZDProductInfo::fullVersion(), "2.1.300 beta");
}
