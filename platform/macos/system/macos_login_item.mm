#include "platform/macos/system/macos_login_item.h"

#import <ServiceManagement/ServiceManagement.h>

#include "platform/macos/values/values.h"

static_assert(HLLoginItemNotRegistered == SMAppServiceStatusNotRegistered);
static_assert(HLLoginItemEnabled == SMAppServiceStatusEnabled);
static_assert(HLLoginItemRequiresApproval == SMAppServiceStatusRequiresApproval);
static_assert(HLLoginItemNotFound == SMAppServiceStatusNotFound);

std::int64_t HLMacLoginItem::status() { return SMAppService.mainAppService.status; }

HLLoginItemOutcome HLMacLoginItem::registerItem() {
  NSError* error = nil;
  const BOOL ok = [SMAppService.mainAppService registerAndReturnError:&error];
  return {ok != NO, HLOptionalText(error.localizedDescription)};
}

HLLoginItemOutcome HLMacLoginItem::unregisterItem() {
  NSError* error = nil;
  const BOOL ok = [SMAppService.mainAppService unregisterAndReturnError:&error];
  return {ok != NO, HLOptionalText(error.localizedDescription)};
}
