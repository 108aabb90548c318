// An outside program with an information list, which shows an icon.
#include "ZDomain/ZDProductInfo.h"
#include "ZDomain/ZDUtils.h"

int main() {
  if (ZDProductInfo::fullVersion() != "2.1.300 beta") return 2;
  return ZDUtils::imageForBundleId("org.example.None").pixels.empty() ? 1 : 0;
}
