#pragma once

#include <QString>

namespace brimsett {

// What the session answers the ministry host's menus with, and the texts by which it knows
// them. The host's numbers are the service's to change, so they are settings; these are the
// values used when none are stored.
struct EdtHostMenu {
    QString prompt = QStringLiteral("SELECTION:");  // the main menu asks for a choice
    QString upload = QStringLiteral("1");           // the upload function
    QString download = QStringLiteral("2");         // the download function
    QString downloadAll = QStringLiteral("A");      // every file of the host's list
    QString noFiles = QStringLiteral("NO FILES");   // the host has nothing to download
};

}  // namespace brimsett
