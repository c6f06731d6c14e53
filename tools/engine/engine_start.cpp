#include "engine_start.h"

#include <QApplication>

#include <dlfcn.h>

#include <cstdio>

// Last: its macros collide with names of Qt.
#include <X11/Xlib.h>

namespace engine {
namespace {

// The engine initialises this toolkit when it starts a plug-in, and the toolkit's handler for X
// errors ends the process. Initialised before, it leaves the handler alone afterwards. The engine
// runs without the toolkit too, so it may be missing.
void initialiseToolkit() {
  void* library = dlopen("libgtk-x11-2.0.so.0", RTLD_NOW | RTLD_GLOBAL);
  if (library == nullptr) return;
  using InitCheck = int (*)(int*, char***);
  const auto initCheck = reinterpret_cast<InitCheck>(dlsym(library, "gtk_init_check"));
  if (initCheck != nullptr) initCheck(nullptr, nullptr);
}

// Qt's own words on the standard error, without the warning that tells what is done here on
// purpose.
void writeMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (text.contains("not created in the main() thread")) return;
  std::fprintf(stderr, "orvane-browser: %s\n", qPrintable(text));
}

}  // namespace

void startEngine() {
  // Wine's handler knows which errors its windows may cause and passes over them.
  XErrorHandler ofWine = XSetErrorHandler(nullptr);
  initialiseToolkit();
  qInstallMessageHandler(writeMessage);
  static int argumentCount = 1;
  static char name[] = "orvane-browser";
  static char* arguments[] = {name, nullptr};
  new QApplication(argumentCount, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  XSetErrorHandler(ofWine);
}

}  // namespace engine
