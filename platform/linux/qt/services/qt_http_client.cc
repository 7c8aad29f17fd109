#include "platform/linux/qt/services/qt_http_client.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariant>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace {

constexpr qsizetype kMostBytes = qsizetype{1} << 20;
constexpr int kMostRedirections = 5;
constexpr double kLongestTimeout = 86'400;  // seconds

QNetworkRequest requestFor(const QUrl& url) {
  QNetworkRequest request(url);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
  for (const auto attribute : {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
                               QNetworkRequest::AuthenticationReuseAttribute}) {
    request.setAttribute(attribute, QNetworkRequest::Manual);
  }
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
  request.setMaximumRedirectsAllowed(kMostRedirections);
  request.setRawHeader("Accept-Encoding", "identity");  // keeps Content-Length equal to the body's size
  return request;
}

// Qt reports statuses such as 404 as errors; those are valid answers.
bool hasFailed(const QNetworkReply& reply, std::int64_t status) {
  const QNetworkReply::NetworkError error = reply.error();
  if (error == QNetworkReply::NoError) return false;
  return status < 400 || error < QNetworkReply::ContentAccessDenied || error == QNetworkReply::ProtocolFailure;
}

bool isWhole(const QNetworkReply& reply, const QByteArray& body) {
  if (!reply.hasRawHeader("Content-Length")) return true;
  return reply.rawHeader("Content-Length").trimmed().toLongLong() == body.size();
}

}  // namespace

// Parent of all requests in flight.
class HLQtHTTPClient::Requests : public QObject {
 public:
  void begin(const QUrl& url, double timeout, std::function<void(HLHTTPAnswer)> answer) {
    auto* manager = new QNetworkAccessManager(this);
    QNetworkReply* reply = manager->get(requestFor(url));
    reply->setParent(manager);
    auto* timer = new QTimer(manager);  // for the whole request; Qt's own timeout restarts with each byte
    timer->setSingleShot(true);
    const auto body = std::make_shared<QByteArray>();
    const auto aborted = std::make_shared<bool>(false);
    const auto abort = [reply, aborted] {
      *aborted = true;
      reply->abort();
    };
    connect(timer, &QTimer::timeout, reply, abort);
    connect(reply, &QNetworkReply::readyRead, reply, [reply, body, abort] {
      body->append(reply->read(kMostBytes + 1 - body->size()));
      if (body->size() > kMostBytes) abort();
    });
    connect(reply, &QNetworkReply::finished, manager,
            [manager, timer, reply, body, aborted, answer = std::move(answer)] {
              timer->stop();
              manager->deleteLater();
              HLHTTPAnswer result;
              result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toLongLong();
              if (!*aborted) body->append(reply->read(kMostBytes + 1 - body->size()));
              const bool failed =
                  *aborted || body->size() > kMostBytes || hasFailed(*reply, result.status) || !isWhole(*reply, *body);
              if (!failed) result.body = body->toStdString();
              answer(std::move(result));
            });
    constexpr double kMilliseconds = 1000;
    timer->start(static_cast<int>(std::clamp(timeout, 0.0, kLongestTimeout) * kMilliseconds));
  }
};

HLQtHTTPClient::HLQtHTTPClient() : requests_(std::make_unique<Requests>()) {}
HLQtHTTPClient::~HLQtHTTPClient() = default;

void HLQtHTTPClient::get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) {
  const QUrl url(QString::fromStdString(address), QUrl::StrictMode);
  const bool isWebAddress =
      url.isValid() && (url.scheme() == "http" || url.scheme() == "https") && !url.host().isEmpty();
  if (!isWebAddress) {
    // Qt would also read files and resources.
    QTimer::singleShot(0, requests_.get(), [answer = std::move(answer)] { answer({}); });
    return;
  }
  requests_->begin(url, timeout, std::move(answer));
}
