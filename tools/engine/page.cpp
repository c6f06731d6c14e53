#include "page.h"

#include <QPainter>
#include <QWebElement>
#include <QWebFrame>
#include <QWebSettings>

#include <cstdio>

namespace engine {

void QuietPage::javaScriptAlert(QWebFrame*, const QString& text) {
  std::fprintf(stderr, "orvane-browser: alert: %s\n", qPrintable(text));
}

bool QuietPage::javaScriptConfirm(QWebFrame*, const QString& text) {
  std::fprintf(stderr, "orvane-browser: confirm, answered no: %s\n", qPrintable(text));
  return false;
}

bool QuietPage::javaScriptPrompt(QWebFrame*, const QString& text, const QString&, QString*) {
  std::fprintf(stderr, "orvane-browser: prompt, cancelled: %s\n", qPrintable(text));
  return false;
}

Page::Page(const QSize& size, QNetworkAccessManager* network, std::vector<QString> injected,
           LineHandler handler)
    : scripts_(std::move(injected)), onLine_(std::move(handler)) {
  auto* page = new QuietPage;
  page->setParent(&view_);
  view_.setPage(page);
  page->setNetworkAccessManager(network);
  page->settings()->setAttribute(QWebSettings::PluginsEnabled, true);
  page->settings()->setAttribute(QWebSettings::LocalStorageEnabled, false);
  QObject::connect(
      page, &QWebPage::consoleMessageReceived,
      [this](QWebPage::MessageSource source, QWebPage::MessageLevel level, const QString& text,
             int line, const QString& where) { message(source, level, text, line, where); });
  QWebFrame* frame = page->mainFrame();
  QObject::connect(frame, &QWebFrame::javaScriptWindowObjectCleared, [this, frame] {
    for (const QString& script : scripts_) frame->evaluateJavaScript(script);
  });
  frame->setScrollBarPolicy(Qt::Vertical, Qt::ScrollBarAlwaysOff);
  frame->setScrollBarPolicy(Qt::Horizontal, Qt::ScrollBarAlwaysOff);
  view_.resize(size);
  // The engine lays plug-ins out in visible views only.
  view_.show();
}

void Page::load(const QUrl& url) {
  view_.load(url);
}

void Page::reload() {
  view_.triggerPageAction(QWebPage::Reload);
}

bool Page::removeElement(const QString& selector) {
  QWebElement element = view_.page()->mainFrame()->findFirstElement(selector);
  if (element.isNull()) return false;
  element.removeFromDocument();
  return true;
}

QImage Page::picture() {
  QImage image(view_.size(), QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  view_.page()->mainFrame()->render(&painter, QWebFrame::ContentsLayer);
  return image;
}

void Page::callFunction(const std::string& name, const std::string& text) {
  view_.page()->mainFrame()->evaluateJavaScript(
      QString("if (window.%1) window.%1('%2')")
          .arg(QString::fromStdString(name), QString::fromStdString(text)));
}

void Page::message(QWebPage::MessageSource source, QWebPage::MessageLevel level,
                   const QString& text, int line, const QString& where) {
  if (source == QWebPage::ConsoleAPIMessageSource) {
    onLine_(text.toStdString());
    return;
  }
  const std::string full =
      text.toStdString() + " (" + where.toStdString() + ":" + std::to_string(line) + ")";
  if (level == QWebPage::ErrorMessageLevel)
    onLine_("error: " + full);
  else
    std::fprintf(stderr, "orvane-browser: %s\n", full.c_str());
}

}  // namespace engine
