#include "foundation/FileModes.h"
#include "foundation/OfficePaths.h"
#include "foundation/SettingsStore.h"
#include "screens/AppShell.h"
#include "screens/BrimsettApplication.h"
#include "screens/frmBMain.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

int main(int argc, char** argv) {
    // Before anything is written: the settings and every office file are the user's alone.
    brimsett::filemodes::ownerOnly();
    brimsett::BrimsettApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Brimsett"));
    QApplication::setApplicationVersion(QStringLiteral("0.1"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Billing and appointments for the physician's office"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption home(QStringLiteral("home"), QStringLiteral("The office data folder."),
                                  QStringLiteral("DIR"));
    const QCommandLineOption settings(QStringLiteral("settings"),
                                      QStringLiteral("The settings file to use."),
                                      QStringLiteral("FILE"));
    // Saves a picture of the main window once it is up, then ends: for checking the look
    // of a build without a screen (QT_QPA_PLATFORM=offscreen).
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"), QStringLiteral("Save the main window as a picture and quit."),
        QStringLiteral("FILE"));
    parser.addOption(home);
    parser.addOption(settings);
    parser.addOption(screenshot);
    parser.process(app);

    QString settingsFile = parser.value(settings);
    if (settingsFile.isEmpty()) {
        settingsFile = qEnvironmentVariable("BRIMSETT_SETTINGS");
    }
    if (settingsFile.isEmpty()) {
        settingsFile = brimsett::SettingsStore::defaultPath();
    }
    brimsett::AppShell shell(brimsett::OfficePaths::resolve(parser.value(home)), settingsFile);
    if (!shell.start()) {
        return shell.exitCode();
    }
    if (parser.isSet(screenshot)) {
        QTimer::singleShot(300, &app, [&] {
            shell.mainWindow()->grab().save(parser.value(screenshot));
            shell.mainWindow()->close();
        });
    }
    return app.exec();
}
