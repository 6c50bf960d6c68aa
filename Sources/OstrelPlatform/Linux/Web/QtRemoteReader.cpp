#include "OstrelPlatform/Linux/Web/QtRemoteReader.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace Ostrel {

namespace {

bool isRemote(const QUrl& url) {
    return url.isValid() && (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

std::optional<std::string> fetch(const QUrl& url, const QtRemoteReader::Limits& limits) {
    QNetworkAccessManager network;
    network.setAutoDeleteReplies(false);
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(limits.redirects);
    const std::unique_ptr<QNetworkReply> reply(network.get(request));

    QEventLoop loop;
    std::string bytes;
    const auto take = [&] {
        bytes += reply->readAll().toStdString();
        if (std::ssize(bytes) > limits.bytes)
            reply->abort();
    };
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, take);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(limits.milliseconds, Qt::PreciseTimer, reply.get(), &QNetworkReply::abort);
    if (!reply->isFinished())
        loop.exec();

    if (reply->error() != QNetworkReply::NoError)
        return std::nullopt;
    take();
    return std::ssize(bytes) <= limits.bytes ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace

QtRemoteReader::QtRemoteReader(Limits limits)
    : limits_(limits) { }

std::optional<std::string> QtRemoteReader::read(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url));
    if (!isRemote(parsed))
        return std::nullopt;
    std::optional<std::string> bytes;
    std::thread([&] { bytes = fetch(parsed, limits_); }).join();
    return bytes;
}

} // namespace Ostrel
