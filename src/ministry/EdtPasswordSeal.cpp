#include "ministry/EdtPasswordSeal.h"

#include <QFile>
#include <QFileInfo>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>
#include <QTemporaryFile>

namespace brimsett {

namespace {

constexpr int kKeyBytes = 32;
constexpr int kNonceBytes = 8;
constexpr int kCheckBytes = 6;
constexpr auto kBase64 = QByteArray::Base64Encoding | QByteArray::OmitTrailingEquals;

QByteArray mac(const QByteArray& key, const QByteArray& message) {
    return QMessageAuthenticationCode::hash(message, key, QCryptographicHash::Sha256);
}

// As many bytes as asked of the keystream for this nonce.
QByteArray keystream(const QByteArray& key, const QByteArray& nonce, qsizetype length) {
    QByteArray stream;
    for (char block = 0; stream.size() < length; ++block) {
        stream += mac(key, QByteArrayLiteral("stream") + nonce + QByteArray(1, block));
    }
    return stream.left(length);
}

QByteArray xored(const QByteArray& text, const QByteArray& stream) {
    QByteArray out = text;
    for (qsizetype i = 0; i < out.size(); ++i) {
        out[i] = static_cast<char>(out[i] ^ stream[i]);
    }
    return out;
}

QByteArray check(const QByteArray& key, const QByteArray& nonce, const QByteArray& sealed) {
    return mac(key, QByteArrayLiteral("check") + nonce + sealed).left(kCheckBytes);
}

QByteArray randomBytes(int count) {
    QByteArray bytes(count, '\0');
    QRandomGenerator* random = QRandomGenerator::system();
    for (char& b : bytes) {
        b = static_cast<char>(random->bounded(256));
    }
    return bytes;
}

}  // namespace

std::optional<QByteArray> EdtPasswordSeal::readKey() {
    QFile file(m_keyFile);
    if (!file.exists()) {
        m_problem = QStringLiteral("The key file %1 is missing.").arg(m_keyFile);
        return std::nullopt;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        m_problem =
            QStringLiteral("The key file %1 cannot be read: %2").arg(m_keyFile, file.errorString());
        return std::nullopt;
    }
    const QByteArray key = file.readAll();
    if (key.size() != kKeyBytes) {
        m_problem = QStringLiteral("The key file %1 is damaged.").arg(m_keyFile);
        return std::nullopt;
    }
    return key;
}

std::optional<QByteArray> EdtPasswordSeal::readOrMakeKey() {
    if (QFileInfo::exists(m_keyFile)) {
        return readKey();
    }
    // Written whole under a temporary name, readable by this user only, and renamed: a
    // second program making its own key at the same moment keeps the first one made.
    QTemporaryFile made(QFileInfo(m_keyFile).absolutePath() + QStringLiteral("/EDTKey-XXXXXX"));
    if (!made.open() || made.write(randomBytes(kKeyBytes)) != kKeyBytes || !made.flush()) {
        m_problem = QStringLiteral("The key file %1 cannot be written: %2")
                        .arg(m_keyFile, made.errorString());
        return std::nullopt;
    }
    made.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    made.close();
    if (made.rename(m_keyFile)) {
        made.setAutoRemove(false);
    }
    return readKey();
}

std::optional<QString> EdtPasswordSeal::seal(const QString& password) {
    const QByteArray plain = password.toUtf8();
    if (plain.size() > kMaxPasswordBytes) {
        m_problem =
            QStringLiteral("The password can be at most %1 characters.").arg(kMaxPasswordBytes);
        return std::nullopt;
    }
    const std::optional<QByteArray> key = readOrMakeKey();
    if (!key) {
        return std::nullopt;
    }
    const QByteArray nonce = randomBytes(kNonceBytes);
    const QByteArray sealed = xored(plain, keystream(*key, nonce, plain.size()));
    return kPrefix +
           QString::fromLatin1((nonce + sealed + check(*key, nonce, sealed)).toBase64(kBase64));
}

std::optional<QString> EdtPasswordSeal::open(const QString& stored) {
    if (!isSealed(stored)) {
        return stored;
    }
    const auto decoded = QByteArray::fromBase64Encoding(
        stored.mid(kPrefix.size()).toLatin1(), kBase64 | QByteArray::AbortOnBase64DecodingErrors);
    const QByteArray bytes = decoded.decoded;
    if (!decoded || bytes.size() < kNonceBytes + kCheckBytes) {
        m_problem = QStringLiteral("The stored password is damaged.");
        return std::nullopt;
    }
    const std::optional<QByteArray> key = readKey();
    if (!key) {
        return std::nullopt;
    }
    const QByteArray nonce = bytes.left(kNonceBytes);
    const QByteArray sealed = bytes.mid(kNonceBytes, bytes.size() - kNonceBytes - kCheckBytes);
    if (check(*key, nonce, sealed) != bytes.right(kCheckBytes)) {
        m_problem = QStringLiteral(
                        "The stored password was saved with another key than %1 (on another "
                        "computer?).")
                        .arg(m_keyFile);
        return std::nullopt;
    }
    return QString::fromUtf8(xored(sealed, keystream(*key, nonce, sealed.size())));
}

}  // namespace brimsett
