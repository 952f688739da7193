#pragma once

#include <QString>

#include <array>
#include <optional>

namespace brimsett {

class Prompter;
class SettingsStore;

// The office's graded passwords: levels 0 (Master, the strongest) to 4. Someone who has
// entered the password of a level may use every feature that requires that level or a
// weaker one (a higher number).
//
// Which features are open: with no password at all, every one. A feature requiring level R
// is also open while no password is set for R or any weaker level, since nobody could have
// logged in at such a level anyway; once one is set, it needs a current level of R or
// stronger. So an office that only sets a Master password locks only the Master features.
//
// Each password is kept in section "General" under "Open0".."Open4" (never "Open" itself,
// which is the program's open flag) as a salted PBKDF2-SHA256 hash:
// "pbkdf2-sha256$<iterations>$<salt hex>$<hash hex>". A stored text in any other form
// counts as set but matches nothing, so a damaged entry keeps its features closed; taking
// the key out of the settings file is the way back. A hash made with fewer rounds than this
// object makes is still accepted, and made again with its rounds at the next login.
class AccessLevels {
public:
    static constexpr int kLevelCount = 5;
    // PBKDF2-SHA256 rounds of a new hash, as current guidance asks.
    static constexpr int kRounds = 600'000;
    static constexpr int kMaster = 0;
    static constexpr int kBillingSecretary = 2;

    enum class ChangeResult {
        Changed,
        Unchanged,    // empty text, the level's present password, or no such level
        MasterFirst,  // a weaker level before the Master password exists
        InUse,        // another level has this password: login would pick the wrong level
    };

    // Reads the stored passwords at once. Tests that make many passwords pass fewer rounds.
    explicit AccessLevels(SettingsStore& store, int rounds = kRounds);

    void load();
    bool anySet() const;
    bool isSet(int level) const;
    // "Master", "Billing Secretary", "Secretary" for 0, 2, 4; empty for the others.
    static QString levelName(int level);

    // True when a feature requiring the level may be used now, without asking.
    bool isOpen(int level) const;
    // isOpen, or the refusal told through the prompter (critical icon).
    bool require(int level, Prompter& prompter) const;

    // Sets the current level to the strongest level whose password this is; no value (and
    // the current level kept) when none matches. A matching hash of fewer rounds is replaced.
    std::optional<int> login(const QString& password);
    void logout() { m_current.reset(); }
    std::optional<int> currentLevel() const { return m_current; }

    bool verify(int level, const QString& password) const;
    // Whether someone who typed this password may change or remove the level: it is the
    // password of that level or a stronger one. While no such level has a password there is
    // nothing to prove (the first Master password). Being logged in does not count, so a
    // computer left open cannot have its passwords changed.
    bool mayManage(int level, const QString& password) const;

    // Stores the new password of the level. Whether the user may do it is mayManage's part.
    ChangeResult change(int level, const QString& newPassword);
    // Removes the level and every weaker one. A current level among them ends.
    void remove(int level);

private:
    static bool isLevel(int level) { return level >= 0 && level < kLevelCount; }
    static QString key(int level);
    void store(int level, const QString& password);

    SettingsStore& m_store;
    int m_rounds;
    std::array<QString, kLevelCount> m_stored;
    std::optional<int> m_current;
};

}  // namespace brimsett
