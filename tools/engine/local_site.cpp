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
      : QNetworkReply(owner), body(content) {
    setRequest(request);
    setUrl(request.url());
    setOperation(operation);
    setAttribute(QNetworkRequest::HttpStatusCodeAttribute, 200);
    setHeader(QNetworkRequest::ContentTypeHeader, type);
    setHeader(QNetworkRequest::ContentLengthHeader, body.size());
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
    return body.size() - position + QNetworkReply::bytesAvailable();
  }

 protected:
  qint64 readData(char* data, qint64 limit) override {
    const qint64 size = std::min<qint64>(limit, body.size() - position);
    if (size == 0) return -1;
    std::memcpy(data, body.constData() + position, static_cast<size_t>(size));
    position += size;
    return size;
  }

 private:
  // The receiver connects after it has got the reply.
  void announce() {
    open(ReadOnly | Unbuffered);
    QTimer::singleShot(0, this, [this] {
      emit metaDataChanged();
      if (!body.isEmpty()) emit readyRead();
      setFinished(true);
      emit finished();
    });
  }

  QByteArray body;
  qint64 position = 0;
};

QString contentType(const QString& fileName) {
  const QString type =
      QMimeDatabase().mimeTypeForFile(fileName, QMimeDatabase::MatchExtension).name();
  return type.startsWith("text/") ? type + "; charset=utf-8" : type;
}

}  // namespace

LocalSite::LocalSite(const QUrl& url, const QByteArray& html, const QString& files)
    : pageUrl(url), page(html), folder(files) {
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
  if (url.scheme() != pageUrl.scheme() || url.authority() != pageUrl.authority())
    return QNetworkAccessManager::createRequest(operation, request, data);
  if (url.path() == pageUrl.path())
    return new MemoryReply(request, operation, "text/html; charset=utf-8", page, this);
  // Normalised, the path cannot climb out of the folder.
  const QString path = QDir::cleanPath("/" + url.path());
  QFile file(folder.absolutePath() + path);
  if (path.startsWith("/..") || QFileInfo(file).isDir() || !file.open(QIODevice::ReadOnly))
    return new MemoryReply(request, operation, this);
  return new MemoryReply(request, operation, contentType(path), file.readAll(), this);
}

}  // namespace engine
