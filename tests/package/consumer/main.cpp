// An outside program: leaves a file in the product's folder and logs what it finds there. It looks
// into the lists of reserved domains that come with the package.
#include "ZCommons/Files/ZCFFileUtils.h"
#include "ZCommons/Lang/ZCLLogger.h"
#include "ZCommons/Network/ZCNUrlUtils.h"
#include "ZDomain/ZDLocations.h"
#include "logging/DDLogMacros.h"

int main() {
  if (ZCNUrlUtils::secondLevelDomainName("a.b.co.uk") != "b.co.uk") return 2;
  ZCLLogger::singleton().initLogger("org.example.Consumer");
  const auto core = ZDLocations::sharedZarvoCoreDirectory();
  if (!core) return 1;
  ZCFFileUtils::writeQuetly("hello", core->URLByAppendingPathComponent("greeting"));
  for (const auto& url : ZCFFileUtils::findUrlByName("*", *core, 1, false)) {
    DDLogInfo(__LINE__, "(%@) Found %@", THIS_FILE, url);
  }
}
