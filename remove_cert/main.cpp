#include <cstdlib>

#include "ZCommons/Files/ZCFFileUtils.h"
#include "ZCommons/Lang/ZCLLogger.h"
#include "ZCommons/System/ZCSSystemUtils.h"
#include "ZDomain/ProductBundleIdentifier.h"
#include "ZDomain/ZDLocations.h"
#include "logging/DDLogMacros.h"
#include "platform/Process.h"

int main() {
  constexpr const char* certName = "Zarvo Personal CA";

  if (!ZCSSystemUtils::rootPrivileges()) return 10;
  platform::Process::secureStart();
  ZCLLogger::singleton().initLogger(ProductBundleIdentifier);

  if (ZCSSystemUtils::removeCertFromSystemKeychainWithName(certName)) {
    DDLogInfo(28, "(%@) Root cert \"%@\" removed from CA storage.", THIS_FILE, certName);
  } else {
    DDLogError(31, "(%@ %s) Remove root cert \"%@\" from CA storage failured.", THIS_FILE, __func__,
               certName);
  }

  const ZDLocations::Folder& directory = ZDLocations::sharedZarvoCoreDirectory();
  if (!directory) std::exit(40);
  DDLogInfo(41, "(%@) Delete ZarvoCore certificates cache directory \"%@\".", THIS_FILE, directory);
  for (const foundation::URL& url : ZCFFileUtils::findUrlByName("*", directory, 1, false)) {
    if (ZCFFileUtils::deleteQuetlyForUrl(url)) {
      DDLogInfo(44, "(%@) Successfully delete: %@", THIS_FILE, url);
    }
  }
  return 0;
}
