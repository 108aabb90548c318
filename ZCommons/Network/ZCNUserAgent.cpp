#include "ZCommons/Network/ZCNUserAgent.h"

ZCNUserAgent::ZCNUserAgent(foundation::NullableText value)
    : browser_(&ZCNBrowser::detectBrowser(value)), browserVersion_(browser_->version(value)) {
  if (!value.isNull()) userAgentValue_.emplace(value.view());
}
