#include "local_site.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace engine {
namespace {

// A reply whose whole body is there from the start.
class MemoryReply : public QNetworkReply {
 public:
  MemoryReply(const QNetworkRequest& request, QNetworkAccessManager::Operation operation,
              const QString& type, const QByteArray& content, QObject* owner)
      : QNetworkReply(owner), body_(content) {
    setRequest(request);
    setUrl(request.url());
    setOperation(operation);
    setAttribute(QNetworkRequest::HttpStatusCodeAttribute, 200);
    setHeader(QNetworkRequest::ContentTypeHeader, type);
    setHeader(QNetworkRequest::ContentLengthHeader, body_.size());
    announce();
  }
  // A file that is not there.
  MemoryReply(const QNetworkRequest& request, QNetworkAccessManager::Operation operation,
              QObject* owner)
      : QNetworkReply(owner) {
    setRequest(request);
    setUrl(request.url());
    setOperation(operation);
    setAttribute(QNetworkRequest::HttpStatusCodeAttribute, 404);
    announce();
    setError(ContentNotFoundError, "not found");
  }

  void abort() override {}
  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override {
    return body_.size() - position_ + QNetworkReply::bytesAvailable();
  }

 protected:
  qint64 readData(char* data, qint64 limit) override {
    const qint64 size = std::min<qint64>(limit, body_.size() - position_);
    if (size == 0) return -1;
    std::memcpy(data, body_.constData() + position_, static_cast<size_t>(size));
    position_ += size;
    return size;
  }

 private:
  // The receiver connects after it has got the reply.
  void announce() {
    open(ReadOnly | Unbuffered);
    QTimer::singleShot(0, this, [this] {
      emit metaDataChanged();
      if (!body_.isEmpty()) emit readyRead();
      setFinished(true);
      emit finished();
    });
  }

  QByteArray body_;
  qint64 position_ = 0;
};

QString contentType(const QString& fileName) {
  const QString type =
      QMimeDatabase().mimeTypeForFile(fileName, QMimeDatabase::MatchExtension).name();
  return type.startsWith("text/") ? type + "; charset=utf-8" : type;
}

}  // namespace

LocalSite::LocalSite(const QUrl& url, const QByteArray& html, const QString& files)
    : pageUrl_(url), page_(html), folder_(files) {
  // The engine's console is silent about a script or a picture that is missing.
  connect(this, &QNetworkAccessManager::finished, [](QNetworkReply* reply) {
    if (reply->error() == QNetworkReply::NoError) return;
    std::fprintf(stderr, "orvane-browser: not loaded: %s: %s\n",
                 qPrintable(reply->url().toString()), qPrintable(reply->errorString()));
  });
}

QNetworkReply* LocalSite::createRequest(Operation operation, const QNetworkRequest& request,
                                        QIODevice* data) {
  const QUrl url = request.url();
  if (url.scheme() != pageUrl_.scheme() || url.authority() != pageUrl_.authority())
    return QNetworkAccessManager::createRequest(operation, request, data);
  if (url.path() == pageUrl_.path())
    return new MemoryReply(request, operation, "text/html; charset=utf-8", page_, this);
  // Normalised, the path cannot climb out of the folder.
  const QString path = QDir::cleanPath("/" + url.path());
  QFile file(folder_.absolutePath() + path);
  if (path.startsWith("/..") || QFileInfo(file).isDir() || !file.open(QIODevice::ReadOnly))
    return new MemoryReply(request, operation, this);
  return new MemoryReply(request, operation, contentType(path), file.readAll(), this);
}

}  // namespace engine
