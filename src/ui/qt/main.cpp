// kerno-desktop: the main window as a program.

#include <QApplication>
#include <QIcon>
#include <QProxyStyle>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/cut_services.h"
#include "app/system_services.h"
#include "base/dump_log.h"
#include "base/profile_settings.h"
#include "platform/console.h"
#include "ui/qt/leaving.h"
#include "ui/qt/main_window.h"

namespace kerno {
namespace {

// Drop-down lists drop down everywhere, so that their length can be set.
class Style final : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* answer) const override {
    if (hint == SH_ComboBox_Popup) return 0;
    return QProxyStyle::styleHint(hint, option, widget, answer);
  }
};

// Small sizes have drawings of their own.
QIcon ProgramIcon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 256})
    icon.addFile(QStringLiteral(":/icons/%1.png").arg(size));
  return icon;
}

// What can be told without a display; empty where the window is wanted.
std::string_view AnswerTo(std::string_view option) {
  if (option == "--version") return "kerno-desktop " KERNO_VERSION "\n";
  if (option == "--help" || option == "-h") {
    return "Usage: kerno-desktop [FILE...]\n\n"
           "Opens the window of Kerno, with FILE as if it were dropped on it: a text, a parts file "
           "(.ipx),\na font file, a table (.csv) for a series. The options of Qt hold, too: "
           "-platform NAME, -style NAME.\n";
  }
  return {};
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  kerno::PrepareStandardStreams();
  if (const std::string_view answer = argc > 1 ? kerno::AnswerTo(argv[1]) : ""; !answer.empty()) {
    const bool printed = std::fwrite(answer.data(), 1, answer.size(), stdout) == answer.size() &&
                         std::fflush(stdout) == 0;
    return printed ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("kerno"));
  QApplication::setApplicationVersion(QStringLiteral(KERNO_VERSION));
  QGuiApplication::setDesktopFileName(QStringLiteral("kerno"));
  QApplication::setStyle(new kerno::Style);
  QApplication::setWindowIcon(kerno::ProgramIcon());
  kerno::InstallProfileSettings();
  const kerno::RunDump dump(u"kerno-desktop");
  kerno::SystemServices services;
  kerno::SystemCutServices cut_services;
  kerno::MainWindow window(services, cut_services);
  window.show();
  kerno::KeepAtTheEnd(&window, [&window] { window.SaveNow(); });
  window.OpenFiles(QApplication::arguments().mid(1));
  return QApplication::exec();
}
