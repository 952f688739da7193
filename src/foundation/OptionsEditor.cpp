#include "foundation/OptionsEditor.h"

#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/Prompter.h"
#include "foundation/ServerAddress.h"
#include "foundation/SettingsStore.h"

#include <QFileInfo>

#include <limits>

namespace brimsett {

namespace {

const QString kPlacerKey = QStringLiteral("PlacerID");

struct NumberRule {
    OptionsEditor::Field field;
    const char* name;
    int low;
    int high;
};

// The sensible range of each typed number; a value outside it is refused like a word.
constexpr int kNoLimit = std::numeric_limits<int>::max();
constexpr NumberRule kRules[] = {
    {OptionsEditor::Field::NextIDUnder, "Next ID under", 0, kNoLimit},
    {OptionsEditor::Field::PrintInvoice, "Print invoice", 0, 99},
    {OptionsEditor::Field::PrintReceipt, "Print receipt", 0, 99},
    {OptionsEditor::Field::PrintLabelCount, "Number of chart labels", 1, 99},
    {OptionsEditor::Field::MenuSize, "Menu font size", 6, 72},
    {OptionsEditor::Field::MenuSkip, "Menu spacing", 0, 100},
};

std::optional<int> numberIn(const QString& text, int low, int high) {
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    if (!ok || value < low || value > high) {
        return std::nullopt;
    }
    return value;
}

bool isPlacerId(const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty() || t.size() > 18) {
        return false;
    }
    for (QChar c : t) {
        if (!c.isDigit()) {
            return false;
        }
    }
    return true;
}

QString ruleText(const NumberRule& rule) {
    if (rule.high == kNoLimit) {
        return QStringLiteral("Please enter a whole number (%1 or more) for %2.")
            .arg(rule.low)
            .arg(QString::fromLatin1(rule.name));
    }
    return QStringLiteral("Please enter a whole number from %1 to %2 for %3.")
        .arg(rule.low)
        .arg(rule.high)
        .arg(QString::fromLatin1(rule.name));
}

}  // namespace

OptionsEditor::OptionsEditor(const AppSettings& settings, Database& db, Prompter& prompter)
    : m_settings(settings),
      m_db(db),
      m_prompter(prompter),
      m_loadedDbPath(settings.dbPath),
      m_loadedDbPPath(settings.dbPPath) {
    m_texts.insert(Field::NextIDUnder, QString::number(settings.nextIDUnder));
    m_texts.insert(Field::PrintInvoice, QString::number(settings.printInvoice));
    m_texts.insert(Field::PrintReceipt, QString::number(settings.printReceipt));
    m_texts.insert(Field::PrintLabelCount, QString::number(settings.printLabelCount));
    m_texts.insert(Field::MenuSize, QString::number(settings.menuSize));
    m_texts.insert(Field::MenuSkip, QString::number(settings.menuSkip));
    if (m_db.hasTable(QStringLiteral("OtherParams"))) {
        m_loadedPlacerId = m_db.scalar(QStringLiteral("Select ParamValue From OtherParams "
                                                      "Where ParamName = ?"),
                                       {kPlacerKey}, QStringLiteral("reading the next placer id"))
                               .toString()
                               .trimmed();
    }
    m_texts.insert(Field::PlacerID, m_loadedPlacerId);
}

QStringList OptionsEditor::problems() const {
    QStringList lines;
    for (const NumberRule& rule : kRules) {
        if (!numberIn(text(rule.field), rule.low, rule.high)) {
            lines << ruleText(rule);
        }
    }
    const QString placer = text(Field::PlacerID).trimmed();
    // An office that never kept a placer id may leave the field empty.
    const bool untouchedEmpty = placer.isEmpty() && m_loadedPlacerId.isEmpty();
    if (!untouchedEmpty && !isPlacerId(placer)) {
        lines << kPlacerRefusal;
    }
    return lines;
}

bool OptionsEditor::save(SettingsStore& store) {
    m_badField.reset();
    const QStringList lines = problems();
    if (!lines.isEmpty()) {
        for (const NumberRule& rule : kRules) {
            if (!numberIn(text(rule.field), rule.low, rule.high)) {
                m_badField = rule.field;
                break;
            }
        }
        if (!m_badField) {
            m_badField = Field::PlacerID;
        }
        m_prompter.tell(kTitle, lines, Icon::Warning);
        return false;
    }
    if (!locationAccepted(Field::DbPath, QStringLiteral("Main"), m_settings.dbPath) ||
        !locationAccepted(Field::DbPPath, QStringLiteral("Patient"), m_settings.dbPPath)) {
        return false;
    }
    applyNumbers();
    const QString placer = text(Field::PlacerID).trimmed();
    try {
        Transaction t(m_db, QStringLiteral("saving the options"));
        if (!placer.isEmpty() && placer != m_loadedPlacerId) {
            writePlacerId(placer);
        }
        // The store is written last: a refused placer id leaves both as they were.
        m_settings.saveOptions(store);
        store.sync();
        t.commit();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The options could not be saved."), e.message()});
        return false;
    }
    m_loadedPlacerId = placer;
    return true;
}

bool OptionsEditor::locationAccepted(Field field, const QString& label, const QString& path) {
    const QString& loaded = field == Field::DbPath ? m_loadedDbPath : m_loadedDbPPath;
    if (path == loaded) {
        return true;  // the location in use now; nothing new to check
    }
    if (ServerAddress::names(path)) {
        return serverAccepted(field, path);
    }
    const QString file = OfficePaths(m_settings.appPath).databaseFile(path);
    if (QFileInfo::exists(file)) {
        return true;
    }
    const bool anyway = m_prompter.confirm(
        kTitle,
        {QStringLiteral("There is no database at the %1 database path:").arg(label), file,
         QString(), QStringLiteral("Brimsett will not find its database there at the next start."),
         QStringLiteral("Save the options anyway?")},
        Icon::Warning);
    if (!anyway) {
        m_badField = field;
    }
    return anyway;
}

// A server address is checked by connecting: a text that cannot be read is refused, a server
// that cannot be reached now may still be saved.
bool OptionsEditor::serverAccepted(Field field, const QString& address) {
    auto opened = Database::openServer(address);
    const auto* failure = std::get_if<OpenFailure>(&opened);
    if (failure == nullptr) {
        return true;
    }
    if (failure->kind == OpenFailure::Kind::BadAddress) {
        m_prompter.error(failure->lines());
        m_badField = field;
        return false;
    }
    QStringList lines = failure->lines();
    lines << QString() << QStringLiteral("Save the options anyway?");
    const bool anyway = m_prompter.confirm(kTitle, lines, Icon::Warning);
    if (!anyway) {
        m_badField = field;
    }
    return anyway;
}

void OptionsEditor::applyNumbers() {
    auto value = [this](Field f) { return text(f).trimmed().toInt(); };
    m_settings.nextIDUnder = value(Field::NextIDUnder);
    m_settings.printInvoice = value(Field::PrintInvoice);
    m_settings.printReceipt = value(Field::PrintReceipt);
    m_settings.printLabelCount = value(Field::PrintLabelCount);
    m_settings.menuSize = value(Field::MenuSize);
    m_settings.menuSkip = value(Field::MenuSkip);
}

void OptionsEditor::writePlacerId(const QString& value) {
    const QString doing = QStringLiteral("saving the next placer id");
    const QSqlQuery q =
        m_db.exec(QStringLiteral("Update OtherParams Set ParamValue = ? Where ParamName = ?"),
                  {value, kPlacerKey}, doing);
    if (q.numRowsAffected() < 1) {
        m_db.exec(QStringLiteral("Insert Into OtherParams (ParamName, ParamValue) Values (?, ?)"),
                  {kPlacerKey, value}, doing);
    }
}

}  // namespace brimsett
