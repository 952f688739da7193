#pragma once

#include "ministry/EdtHostSettings.h"

#include <QChar>
#include <QMap>
#include <QString>

namespace brimsett {

// What the session answers the ministry host's main menu with, and the text by which it knows
// the menu is shown (the one the logon awaits). The host's choices are the service's to
// change; these are the values used while no setting holds them.
struct EdtHostMenu {
    QString shown = QStringLiteral("MAIN MENU");
    QString upload = QStringLiteral("1");          // the upload function
    QString download = QStringLiteral("2");        // the download function
    QString downloadAll = QStringLiteral("A");     // every file of the host's list
    QString noFiles = QStringLiteral("NO FILES");  // the host has nothing to download

    // The menu as the general settings of `edtparams` describe it.
    static EdtHostMenu from(const QMap<QChar, QString>& general) {
        EdtHostMenu menu;
        menu.shown = edthost::value(general, edthost::kHostMenu);
        return menu;
    }
};

}  // namespace brimsett
