#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace brimsett {

// Keeps the transfer passwords of `edtparams` out of plain sight: each is sealed with a
// random key kept in a file of the office folder, not in the database, so a copy of the
// database alone (a backup, a dump of a shared server) does not show them. Whoever has both
// the database and the key file can still read them: that is what the transfer needs.
//
// Sealed form: "s1:" + base64 of an 8-byte nonce, the password xor-ed with an
// HMAC-SHA256 keystream, and a 6-byte check of both. It fits `ParamValue` (60 characters)
// for passwords of up to kMaxPasswordBytes bytes. A value without the prefix is an older
// plain-text password and is read as it stands.
class EdtPasswordSeal {
public:
    static inline const QString kKeyFileName = QStringLiteral("EDTKey.dat");
    static inline const QString kPrefix = QStringLiteral("s1:");
    static constexpr int kMaxPasswordBytes = 28;

    explicit EdtPasswordSeal(QString keyFile) : m_keyFile(std::move(keyFile)) {}

    static bool isSealed(const QString& stored) { return stored.startsWith(kPrefix); }

    // The sealed text, making the key file when there is none yet. None (and problem() says
    // why) when the key file cannot be made or read, or the password is too long.
    std::optional<QString> seal(const QString& password);
    // The password of a stored value. None when it was sealed with another key (another
    // computer's key file, or none here) or is damaged; problem() says which.
    std::optional<QString> open(const QString& stored);

    QString problem() const { return m_problem; }

private:
    std::optional<QByteArray> readKey();
    std::optional<QByteArray> readOrMakeKey();

    QString m_keyFile;
    QString m_problem;
};

}  // namespace brimsett
