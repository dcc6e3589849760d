#include "Version.h"
#include "alarms/AlarmSound.h"
#include "clock/Clock.h"
#include "logbook/LogFolder.h"
#include "platform/PlatformServices.h"
#include "platform/ShutdownSignals.h"
#include "settings/SettingsStore.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "widgets/Icons.h"

#include <QApplication>
#include <QDir>
#include <QSessionManager>
#include <QStandardPaths>

#include <memory>

namespace {

// Where the program's own files (the default alarm sound) are: beside the program in a
// build tree or portable install, or in the installed data folder.
QStringList DataFolders()
{
    const QString programFolder = QCoreApplication::applicationDirPath();
    return {programFolder, QDir(programFolder).filePath(QStringLiteral("../share/tarrowind"))};
}

} // namespace

int main(int argc, char* argv[])
{
    PrepareDisplay();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarrowind"));
    QApplication::setApplicationVersion(QStringLiteral(TW_VERSION_TEXT));
    QApplication::setDesktopFileName(QStringLiteral("org.tarrowind.Tarrowind"));
    QApplication::setWindowIcon(AppIcon());

    SystemClock clock;
    SettingsStore store;
    const QString logFolder =
        RememberedLogFolder(QCoreApplication::applicationDirPath(),
                            QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
    // Every operating-system service is made here, once, and handed in.
    PlatformServices platform = CreatePlatformServices();
    const MainServices services{clock,         store,
                                logFolder,     QLocale(),
                                DataFolders(), [](QObject* owner) { return AlarmSound::Create(owner); },
                                platform};

    std::unique_ptr<frmMain> mainWindow;
    // A signal or the end of the session ends the program at once: the main window saves
    // what it has without asking anything, and no window is given a chance to refuse (a
    // plain quit would close the splash, which brings up the main window and its question).
    bool ending = false;
    const auto endProgram = [&] {
        if (ending)
            return;
        ending = true;
        if (mainWindow)
            mainWindow->EndSession();
        QCoreApplication::exit(0);
    };
    const auto signals_ = ShutdownSignals::Create();
    QObject::connect(signals_.get(), &ShutdownSignals::Requested, &app, endProgram);
    QObject::connect(&app, &QGuiApplication::commitDataRequest, &app,
                     [&](QSessionManager&) { endProgram(); });

    frmSplash splash;
    QObject::connect(&splash, &frmSplash::Finished, &app, [&] {
        if (ending)
            return; // told to end during the splash: nothing was loaded, nothing to save
        mainWindow = std::make_unique<frmMain>(services);
        if (!mainWindow->Load()) {
            QApplication::setQuitOnLastWindowClosed(false);
            QCoreApplication::exit(1);
            return;
        }
        mainWindow->show();
    });
    splash.show();
    return QApplication::exec();
}
