#include "foundation/AccessLevels.h"

#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"

#include <QRandomGenerator>

#include <openssl/evp.h>

#include <algorithm>
#include <array>

namespace brimsett {

namespace {

const QString kGeneral = QStringLiteral("General");
const QString kScheme = QStringLiteral("pbkdf2-sha256");
constexpr int kMaxIterations = 10'000'000;  // a hand-edited entry must not hang the program
constexpr int kSaltBytes = 16;
constexpr int kHashBytes = 32;

// OpenSSL's PBKDF2 takes a fraction of a second at the full rounds where Qt's
// QPasswordDigestor takes several times as long, and a login may try every level.
QByteArray derive(const QString& password, const QByteArray& salt, int iterations) {
    const QByteArray utf8 = password.toUtf8();
    QByteArray key(kHashBytes, Qt::Uninitialized);
    const int ok = PKCS5_PBKDF2_HMAC(utf8.constData(), static_cast<int>(utf8.size()),
                                     reinterpret_cast<const unsigned char*>(salt.constData()),
                                     static_cast<int>(salt.size()), iterations, EVP_sha256(),
                                     kHashBytes, reinterpret_cast<unsigned char*>(key.data()));
    return ok == 1 ? key : QByteArray();
}

QString hashed(const QString& password, int iterations) {
    std::array<quint32, kSaltBytes / 4> words{};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    const QByteArray salt(reinterpret_cast<const char*>(words.data()), kSaltBytes);
    return QStringLiteral("%1$%2$%3$%4")
        .arg(kScheme)
        .arg(iterations)
        .arg(QString::fromLatin1(salt.toHex()),
             QString::fromLatin1(derive(password, salt, iterations).toHex()));
}

// The rounds of a stored hash; 0 when the text is not in the stored form.
int roundsOf(const QString& stored) {
    const QStringList parts = stored.split(QLatin1Char('$'));
    return parts.size() == 4 && parts[0] == kScheme ? parts[1].toInt() : 0;
}

// Every byte is compared, so the time taken does not tell how much of a guess was right.
bool sameBytes(const QByteArray& a, const QByteArray& b) {
    if (a.size() != b.size()) {
        return false;
    }
    unsigned char diff = 0;
    for (qsizetype i = 0; i < a.size(); ++i) {
        diff |= static_cast<unsigned char>(a[i] ^ b[i]);
    }
    return diff == 0;
}

bool matches(const QString& stored, const QString& password) {
    const QStringList parts = stored.split(QLatin1Char('$'));
    if (parts.size() != 4 || parts[0] != kScheme) {
        return false;
    }
    bool ok = false;
    const int iterations = parts[1].toInt(&ok);
    const QByteArray salt = QByteArray::fromHex(parts[2].toLatin1());
    const QByteArray hash = QByteArray::fromHex(parts[3].toLatin1());
    if (!ok || iterations < 1 || iterations > kMaxIterations || salt.isEmpty() || hash.isEmpty()) {
        return false;
    }
    const QByteArray derived = derive(password, salt, iterations);
    return !derived.isEmpty() && sameBytes(derived, hash);
}

}  // namespace

AccessLevels::AccessLevels(SettingsStore& store, int rounds) : m_store(store), m_rounds(rounds) {
    load();
}

QString AccessLevels::key(int level) {
    return QStringLiteral("Open%1").arg(level);
}

void AccessLevels::load() {
    for (int level = 0; level < kLevelCount; ++level) {
        m_stored[level] = m_store.get(kGeneral, key(level));
    }
}

bool AccessLevels::anySet() const {
    for (int level = 0; level < kLevelCount; ++level) {
        if (isSet(level)) {
            return true;
        }
    }
    return false;
}

bool AccessLevels::isSet(int level) const {
    return isLevel(level) && !m_stored[level].isEmpty();
}

QString AccessLevels::levelName(int level) {
    switch (level) {
        case 0:
            return QStringLiteral("Master");
        case 2:
            return QStringLiteral("Billing Secretary");
        case 4:
            return QStringLiteral("Secretary");
        default:
            return {};
    }
}

bool AccessLevels::isOpen(int level) const {
    bool weakerSet = false;
    for (int l = std::max(level, 0); l < kLevelCount; ++l) {
        weakerSet = weakerSet || isSet(l);
    }
    if (!weakerSet) {
        return true;
    }
    return m_current.has_value() && *m_current <= level;
}

bool AccessLevels::require(int level, Prompter& prompter) const {
    if (isOpen(level)) {
        return true;
    }
    // The old message boxes without a title of their own showed the program's name.
    prompter.tell(
        QStringLiteral("Brimsett"),
        {QStringLiteral("You cannot access this feature."), QString(),
         QStringLiteral("It requires the [") + levelName(level) + QStringLiteral("] password")},
        Icon::Critical);
    return false;
}

bool AccessLevels::verify(int level, const QString& password) const {
    return isSet(level) && !password.isEmpty() && matches(m_stored[level], password);
}

std::optional<int> AccessLevels::login(const QString& password) {
    for (int level = 0; level < kLevelCount; ++level) {
        if (verify(level, password)) {
            m_current = level;
            if (roundsOf(m_stored[level]) < m_rounds) {
                store(level, password);
            }
            return level;
        }
    }
    return std::nullopt;
}

bool AccessLevels::mayManage(int level, const QString& password) const {
    if (!isLevel(level)) {
        return false;
    }
    bool anyStronger = false;
    for (int l = 0; l <= level; ++l) {
        if (isSet(l)) {
            anyStronger = true;
            if (verify(l, password)) {
                return true;
            }
        }
    }
    return !anyStronger;
}

AccessLevels::ChangeResult AccessLevels::change(int level, const QString& newPassword) {
    if (!isLevel(level)) {
        return ChangeResult::Unchanged;
    }
    if (level != kMaster && !isSet(kMaster)) {
        return ChangeResult::MasterFirst;
    }
    if (newPassword.isEmpty() || verify(level, newPassword)) {
        return ChangeResult::Unchanged;
    }
    for (int other = 0; other < kLevelCount; ++other) {
        if (other != level && verify(other, newPassword)) {
            return ChangeResult::InUse;
        }
    }
    store(level, newPassword);
    return ChangeResult::Changed;
}

void AccessLevels::store(int level, const QString& password) {
    m_stored[level] = hashed(password, m_rounds);
    m_store.save(kGeneral, key(level), m_stored[level]);
    m_store.sync();
}

void AccessLevels::remove(int level) {
    if (!isLevel(level)) {
        return;
    }
    for (int l = level; l < kLevelCount; ++l) {
        m_stored[l].clear();
        m_store.remove(kGeneral, key(l));
    }
    m_store.sync();
    if (m_current && *m_current >= level) {
        m_current.reset();
    }
}

}  // namespace brimsett
