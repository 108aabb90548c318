#include <gmock/gmock.h>

#include "ZCommons/Data/ZCDCopied.h"
#include "ZCommons/Data/ZCDObject.h"
#include "ZCommons/Data/ZCDProperty.h"

namespace {

class Everything : public ZCDObject {
 public:
  std::uint16_t size = 0;
  std::string name;
  std::optional<std::int32_t> maybe;
  foundation::Value any;
  ZCDCopied<ZCDObject> mine;
  bool flag = false;
  std::uint64_t bits = 0;
  std::weak_ptr<ZCDObject> owner;
  const std::string fixed = "f";
  void* pointer = nullptr;
  std::pair<int, int> structure;
  int computed() const { return 42; }

  ZCD_PROPERTIES(Everything, ZCDObject, size, name, maybe, any, mine, hidden_, flag, bits, owner,
                 fixed, pointer, structure, computed);

 private:
  std::string hidden_;
};

TEST(ZCDProperty, TakesItsAttributesFromTheDeclaration) {
  std::string attributes;
  for (const char* name : {"size", "name", "maybe", "any", "mine", "hidden", "flag", "bits",
                           "owner", "fixed", "pointer", "structure", "computed"}) {
    attributes += Everything::zcdClass().propertyNamed(name)->attributes + " ";
  }
  EXPECT_EQ(attributes,
            R"(TS,N,Vsize T@"NSString",C,N,Vname T@"NSNumber",C,N,Vmaybe T@,&,N,Vany )"
            R"(T@"ZCDObject",C,N,Vmine T@"NSString",C,N,Vhidden_ )"
            R"(TB,N,Vflag TQ,N,Vbits T@"ZCDObject",W,N,Vowner T@"NSString",R,C,N,Vfixed )"
            R"(T^v,N,Vpointer T{?},N,Vstructure Ti,R,N )");
  EXPECT_THAT(Everything::propertyNamesArray(),
              testing::ElementsAre("size", "name", "maybe", "any", "mine", "hidden"));
}

TEST(ZCDProperty, TestsForExactParts) {
  EXPECT_TRUE(ZCDProperty::isPersistent("TL,GgetR,SsetW:,V_x"));
  for (const char* other : {"Ti,R", "Ti,P,V_x", "Tci,N,V_x", "T:,N,V_x"}) {
    EXPECT_FALSE(ZCDProperty::isPersistent(other)) << other;
  }
}

}  // namespace
