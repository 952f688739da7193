#include "foundation/OfficePaths.h"
#include "foundation/SettingsStore.h"
#include "screens/AppShell.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
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
    parser.addOption(home);
    parser.addOption(settings);
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
    return app.exec();
}
