#include "platform/macos/system/macos_http_client.h"

#import <Foundation/Foundation.h>

#include "platform/macos/values/values.h"

namespace {

HLHTTPAnswer answerOf(NSData* data, NSURLResponse* response, NSError* error) {
  HLHTTPAnswer answer;
  if ([response isKindOfClass:NSHTTPURLResponse.class]) {
    answer.status = static_cast<NSHTTPURLResponse*>(response).statusCode;
  }
  if (error == nil && data != nil) answer.body = std::string(static_cast<const char*>(data.bytes), data.length);
  return answer;
}

}  // namespace

void HLMacHTTPClient::get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) {
  @autoreleasepool {
    NSURL* url = [NSURL URLWithString:HLMakeString(address)];
    if (url == nil) return answer({});
    NSURLSessionConfiguration* configuration = NSURLSessionConfiguration.ephemeralSessionConfiguration;
    configuration.requestCachePolicy = NSURLRequestReloadIgnoringLocalCacheData;
    configuration.timeoutIntervalForRequest = timeout;   // without anything new
    configuration.timeoutIntervalForResource = timeout;  // in all
    NSURLSession* session = [NSURLSession sessionWithConfiguration:configuration];
    NSURLSessionDataTask* task = [session dataTaskWithURL:url
                                        completionHandler:^(NSData* data, NSURLResponse* response, NSError* error) {
                                          answer(answerOf(data, response, error));
                                        }];
    [task resume];
    [session finishTasksAndInvalidate];
  }
}
