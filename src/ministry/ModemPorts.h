#pragma once

#include <QList>
#include <QString>

// The serial devices a modem may hang on, and what an older stored port setting means here.
namespace brimsett::modemports {

struct Port {
    QString device;       // "/dev/ttyUSB0"
    QString description;  // what the system says it is; may be empty
};

// The serial devices of this computer, in natural order (ttyS2 before ttyS10).
QList<Port> available();

// What the setup screen offers: the ports found, and the stored setting's device (when it is
// not among them) first, described as missing, so the value shown is always in the list.
QList<Port> offered(QList<Port> found, const QString& stored);

// The device a stored port setting names. Older offices kept " - COM 1" or "COM1": COM n is
// the n-th serial port, /dev/ttyS(n-1). A bare name ("ttyUSB0") is a device under /dev; a
// path is used as it is; anything else is returned trimmed, for opening to refuse it.
QString device(const QString& stored);

inline const QString kMissing = QStringLiteral("not found on this computer");

}  // namespace brimsett::modemports
