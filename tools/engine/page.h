// One page in the engine: what it prints, the element that holds the plug-in, its picture. Owned
// by the driver; engine's thread.
#pragma once

#include <QImage>
#include <QSize>
#include <QWebPage>
#include <QWebView>

#include <functional>
#include <string>
#include <vector>

namespace engine {

// A page without dialogs: nobody is there to answer them.
class QuietPage : public QWebPage {
 protected:
  void javaScriptAlert(QWebFrame* frame, const QString& text) override;
  bool javaScriptConfirm(QWebFrame* frame, const QString& text) override;
  bool javaScriptPrompt(QWebFrame* frame, const QString& text, const QString& preset,
                        QString* result) override;
};

class Page {
 public:
  // A line of the page's console; an uncaught script error begins "error: ".
  using LineHandler = std::function<void(const std::string& line)>;

  // The injected scripts run in every new document, before the page's own.
  Page(const QSize& size, QNetworkAccessManager* network, std::vector<QString> injected,
       LineHandler handler);

  void load(const QUrl& url);
  void reload();
  // Takes the first element that matches the selector out of the document.
  bool removeElement(const QString& selector);
  // The page as it looks now.
  QImage picture();
  // Calls a function of the page by its name, if it has one.
  void callFunction(const std::string& name, const std::string& text);

 private:
  void message(QWebPage::MessageSource source, QWebPage::MessageLevel level, const QString& text,
               int line, const QString& where);

  std::vector<QString> scripts_;
  LineHandler onLine_;
  QWebView view_;
};

}  // namespace engine
