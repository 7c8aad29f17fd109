#include "platform/macos/system/macos_login_item.h"

#import <ServiceManagement/ServiceManagement.h>

#include "platform/macos/values/values.h"

static_assert(HLLoginItemStatus::notRegistered == HLLoginItemStatus{SMAppServiceStatusNotRegistered});
static_assert(HLLoginItemStatus::enabled == HLLoginItemStatus{SMAppServiceStatusEnabled});
static_assert(HLLoginItemStatus::requiresApproval == HLLoginItemStatus{SMAppServiceStatusRequiresApproval});
static_assert(HLLoginItemStatus::notFound == HLLoginItemStatus{SMAppServiceStatusNotFound});

HLLoginItemStatus HLMacLoginItem::status() {
  return static_cast<HLLoginItemStatus>(SMAppService.mainAppService.status);
}

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
