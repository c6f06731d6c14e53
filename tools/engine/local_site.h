// Answers the page's requests: those to the host of the base URL come from a folder (the page
// itself from memory), so a page can have any address without a server; all others go to the
// network. Engine's thread.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QNetworkAccessManager>
#include <QUrl>

namespace engine {

class LocalSite : public QNetworkAccessManager {
 public:
  LocalSite(const QUrl& url, const QByteArray& html, const QString& files);

 protected:
  QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                               QIODevice* data) override;

 private:
  QUrl pageUrl_;
  QByteArray page_;
  QDir folder_;
};

}  // namespace engine
