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
#include <sstream>
#include <stdexcept>

#include "bridge.h"
#include "console_output.h"
#include "engine_start.h"
#include "local_site.h"
#include "page.h"
#include "plugin_functions.h"

namespace engine {
namespace {

constexpr char kPluginSelector[] = "embed, object";
constexpr char kCommandPrefix[] = "@browser ";
// Script that the last console line left queued runs before the picture is taken.
constexpr int kSettleMs = 50;

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
      : options_(wanted),
        url_(pageUrl(options_)),
        site_(url_, readFile(QString::fromStdString(options_.page)), siteFolder(options_)),
        page_(std::make_unique<Page>(QSize(options_.width, options_.height), &site_,
                                     injectedScripts(options_),
                                     [this](const std::string& line) { consoleLine(line); })) {}

  int run() {
    page_->load(url_);
    const bool limitIsEnd = options_.until.empty();
    later(static_cast<int>(options_.limitSeconds * 1000),
          [this, limitIsEnd] { finish(limitIsEnd ? kExitPassed : kExitTimeLimit); });
    if (options_.removeAfterMs) later(*options_.removeAfterMs, [this] { remove(kPluginSelector); });
    if (options_.reloadAfterMs) later(*options_.reloadAfterMs, [this] { page_->reload(); });
    QApplication::exec();
    page_.reset();  // destroys the instances
    return status_;
  }

 private:
  template <typename Function>
  void later(int ms, Function function) {
    QTimer::singleShot(ms, &timers_, function);
  }

  void consoleLine(const std::string& line) {
    printConsoleLine(line);
    if (startsWith(line, kCommandPrefix))
      later(0, [this, command = line.substr(sizeof kCommandPrefix - 1)] { obey(command); });
    else if (startsWith(line, options_.failOn))
      finish(kExitFailed);
    else if (startsWith(line, options_.until))
      finish(kExitPassed);
  }

  // Runs from the event loop, so no script of the page is on the stack.
  void obey(const std::string& command) {
    const size_t blank = command.find(' ');
    const std::string word = command.substr(0, blank);
    const std::string rest = blank == std::string::npos ? "" : command.substr(blank + 1);
    if (word == "remove")
      remove(rest.empty() ? QString(kPluginSelector) : QString::fromStdString(rest));
    else if (word == "reload")
      page_->reload();
    else if (word == "picture" && !rest.empty())
      savePicture(pictureBeside(rest));
    else if (word == "pixel")
      printPixel(rest);
    else if (word == "drop")
      drop(rest);
    else
      std::fprintf(stderr, "orvane-browser: unknown command: %s\n", command.c_str());
  }

  // The page names a file, never a folder.
  QString pictureBeside(const std::string& name) const {
    const QFileInfo main(QString::fromStdString(options_.picture));
    return main.absolutePath() + "/" + QFileInfo(QString::fromStdString(name)).fileName();
  }

  void remove(const QString& selector) {
    if (!page_->removeElement(selector))
      std::fprintf(stderr, "orvane-browser: no element %s to remove\n", qPrintable(selector));
  }

  void savePicture(const QString& name) {
    if (page_->picture().save(name, "PNG")) return;
    std::fprintf(stderr, "orvane-browser: cannot write %s\n", qPrintable(name));
    if (status_ == kExitPassed) status_ = kExitSetUp;
  }

  // place: two numbers with a blank between.
  void printPixel(const std::string& place) {
    int x = 0, y = 0;
    const QImage image = page_->picture();
    if (std::sscanf(place.c_str(), "%d %d", &x, &y) != 2 || !image.valid(x, y)) return;
    char line[64];
    std::snprintf(line, sizeof line, "pixel %d %d %06x", x, y, image.pixel(x, y) & 0xffffffU);
    printConsoleLine(line);
    page_->callFunction("onpixel", line);
  }

  // what: a place, then paths with a "|" between, which no name may hold.
  void drop(const std::string& what) {
    int x = 0, y = 0, used = 0;
    if (std::sscanf(what.c_str(), "%d %d %n", &x, &y, &used) != 2) return;
    std::vector<std::string> paths;
    std::istringstream rest(what.substr(static_cast<size_t>(used)));
    for (std::string path; std::getline(rest, path, '|');) paths.push_back(path);
    if (!dropFiles(x, y, paths)) std::fprintf(stderr, "orvane-browser: no drop at %d %d\n", x, y);
  }

  // The first reason to end decides.
  void finish(int newStatus) {
    if (finished_) return;
    finished_ = true;
    status_ = newStatus;
    later(kSettleMs, [this] {
      if (!options_.picture.empty()) savePicture(QString::fromStdString(options_.picture));
      QApplication::quit();
    });
  }

  const Options& options_;
  QUrl url_;
  LocalSite site_;
  QObject timers_;
  bool finished_ = false;
  int status_ = kExitPassed;
  std::unique_ptr<Page> page_;
};

// Makes the engine's event loop serve the bridge; the other thread writes to the descriptor.
class BridgeInEventLoop {
 public:
  BridgeInEventLoop()
      : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
        notifier_(descriptor_, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, [this] {
      eventfd_t count = 0;
      eventfd_read(descriptor_, &count);
      bridge().serve(Bridge::Side::kEngine);
    });
    bridge().attach(Bridge::Side::kEngine, [this] { eventfd_write(descriptor_, 1); });
  }
  ~BridgeInEventLoop() {
    bridge().serve(Bridge::Side::kEngine);
    bridge().detach(Bridge::Side::kEngine);
    close(descriptor_);
  }
  BridgeInEventLoop(const BridgeInEventLoop&) = delete;
  BridgeInEventLoop& operator=(const BridgeInEventLoop&) = delete;

 private:
  int descriptor_;
  QSocketNotifier notifier_;
};

}  // namespace

int runEngine(const Options& options) {
  try {
    startEngine();
    BridgeInEventLoop served;
    return Driver(options).run();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orvane-browser: %s\n", e.what());
    return kExitSetUp;
  }
}

}  // namespace engine
