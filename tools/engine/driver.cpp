#include "driver.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTimer>

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

#include "bridge.h"
#include "console_output.h"
#include "engine_start.h"
#include "local_site.h"
#include "page.h"

namespace engine {
namespace {

constexpr char pluginSelector[] = "embed, object";
constexpr char commandPrefix[] = "@browser ";
// Script that the last console line left queued runs before the picture is taken.
constexpr int settleMs = 50;

bool startsWith(const std::string& line, const std::string& prefix) {
  return !prefix.empty() && line.compare(0, prefix.size(), prefix) == 0;
}

QByteArray readFile(const QString& name) {
  QFile file(name);
  const bool opened =
      name == "-" ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
  if (!opened) throw std::runtime_error("cannot read " + name.toStdString());
  return file.readAll();
}

QUrl pageUrl(const Options& options) {
  if (!options.baseUrl.empty()) return QUrl(QString::fromStdString(options.baseUrl));
  const QString name = QFileInfo(QString::fromStdString(options.page)).fileName();
  return QUrl("http://page.orvane.test/" + (options.page == "-" ? QString("page.html") : name));
}

QString siteFolder(const Options& options) {
  if (!options.root.empty()) return QString::fromStdString(options.root);
  return QFileInfo(QString::fromStdString(options.page)).absolutePath();
}

std::vector<QString> injectedScripts(const Options& options) {
  std::vector<QString> scripts;
  for (const std::string& name : options.inject)
    scripts.push_back(QString::fromUtf8(readFile(QString::fromStdString(name))));
  return scripts;
}

class Driver {
 public:
  explicit Driver(const Options& wanted)
      : options(wanted),
        url(pageUrl(options)),
        site(url, readFile(QString::fromStdString(options.page)), siteFolder(options)),
        page(std::make_unique<Page>(QSize(options.width, options.height), &site,
                                    injectedScripts(options),
                                    [this](const std::string& line) { consoleLine(line); })) {}

  int run() {
    page->load(url);
    const bool limitIsEnd = options.until.empty();
    later(static_cast<int>(options.limitSeconds * 1000),
          [this, limitIsEnd] { finish(limitIsEnd ? exitPassed : exitTimeLimit); });
    if (options.removeAfterMs) later(*options.removeAfterMs, [this] { remove(pluginSelector); });
    if (options.reloadAfterMs) later(*options.reloadAfterMs, [this] { page->reload(); });
    QApplication::exec();
    page.reset();  // destroys the instances
    return status;
  }

 private:
  template <typename Function>
  void later(int ms, Function function) {
    QTimer::singleShot(ms, &timers, function);
  }

  void consoleLine(const std::string& line) {
    printConsoleLine(line);
    if (startsWith(line, commandPrefix))
      later(0, [this, command = line.substr(sizeof commandPrefix - 1)] { obey(command); });
    else if (startsWith(line, options.failOn))
      finish(exitFailed);
    else if (startsWith(line, options.until))
      finish(exitPassed);
  }

  // Runs from the event loop, so no script of the page is on the stack.
  void obey(const std::string& command) {
    const size_t blank = command.find(' ');
    const std::string word = command.substr(0, blank);
    const std::string rest = blank == std::string::npos ? "" : command.substr(blank + 1);
    if (word == "remove")
      remove(rest.empty() ? QString(pluginSelector) : QString::fromStdString(rest));
    else if (word == "reload")
      page->reload();
    else if (word == "picture" && !rest.empty())
      savePicture(pictureBeside(rest));
    else if (word == "pixel")
      printPixel(rest);
    else
      std::fprintf(stderr, "orvane-browser: unknown command: %s\n", command.c_str());
  }

  // The page names a file, never a folder.
  QString pictureBeside(const std::string& name) const {
    const QFileInfo main(QString::fromStdString(options.picture));
    return main.absolutePath() + "/" + QFileInfo(QString::fromStdString(name)).fileName();
  }

  void remove(const QString& selector) {
    if (!page->removeElement(selector))
      std::fprintf(stderr, "orvane-browser: no element %s to remove\n", qPrintable(selector));
  }

  void savePicture(const QString& name) {
    if (page->picture().save(name, "PNG")) return;
    std::fprintf(stderr, "orvane-browser: cannot write %s\n", qPrintable(name));
    if (status == exitPassed) status = exitSetUp;
  }

  // place: two numbers with a blank between.
  void printPixel(const std::string& place) {
    int x = 0, y = 0;
    const QImage image = page->picture();
    if (std::sscanf(place.c_str(), "%d %d", &x, &y) != 2 || !image.valid(x, y)) return;
    char line[64];
    std::snprintf(line, sizeof line, "pixel %d %d %06x", x, y, image.pixel(x, y) & 0xffffffU);
    printConsoleLine(line);
  }

  // The first reason to end decides.
  void finish(int newStatus) {
    if (finished) return;
    finished = true;
    status = newStatus;
    later(settleMs, [this] {
      if (!options.picture.empty()) savePicture(QString::fromStdString(options.picture));
      QApplication::quit();
    });
  }

  const Options& options;
  QUrl url;
  LocalSite site;
  QObject timers;
  bool finished = false;
  int status = exitPassed;
  std::unique_ptr<Page> page;
};

// Makes the engine's event loop serve the bridge; the other thread writes to the descriptor.
class BridgeInEventLoop {
 public:
  BridgeInEventLoop()
      : descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
        notifier(descriptor, QSocketNotifier::Read) {
    QObject::connect(&notifier, &QSocketNotifier::activated, [this] {
      eventfd_t count = 0;
      eventfd_read(descriptor, &count);
      bridge().serve(Bridge::Side::Engine);
    });
    bridge().attach(Bridge::Side::Engine, [this] { eventfd_write(descriptor, 1); });
  }
  ~BridgeInEventLoop() {
    bridge().serve(Bridge::Side::Engine);
    bridge().detach(Bridge::Side::Engine);
    close(descriptor);
  }
  BridgeInEventLoop(const BridgeInEventLoop&) = delete;
  BridgeInEventLoop& operator=(const BridgeInEventLoop&) = delete;

 private:
  int descriptor;
  QSocketNotifier notifier;
};

}  // namespace

int runEngine(const Options& options) {
  try {
    startEngine();
    BridgeInEventLoop served;
    return Driver(options).run();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orvane-browser: %s\n", e.what());
    return exitSetUp;
  }
}

}  // namespace engine
