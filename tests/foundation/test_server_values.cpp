#include "TestSupport.h"
#include "foundation/ServerValues.h"

#include <QtTest>

using namespace brimsett;

namespace {

// What the copy would write, as one comparable text.
QString outcome(const QVariant& value, const TargetColumn& column) {
    QString problem;
    const std::optional<QVariant> converted = convertForServer(value, column, &problem);
    if (!converted) {
        return QStringLiteral("refused: ") + problem;
    }
    if (converted->isNull()) {
        return QStringLiteral("<null>");
    }
    switch (converted->typeId()) {
        case QMetaType::QDate:
            return QStringLiteral("date ") + converted->toDate().toString(Qt::ISODate);
        case QMetaType::QDateTime:
            return QStringLiteral("moment ") +
                   converted->toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        case QMetaType::LongLong:
            return QStringLiteral("int ") + converted->toString();
        case QMetaType::Double:
            return QStringLiteral("real ") + converted->toString();
        case QMetaType::QString:
            return QStringLiteral("text '") + converted->toString() + QLatin1Char('\'');
        default:
            return QStringLiteral("other ") + converted->toString();
    }
}

}  // namespace

class TestServerValues : public QObject {
    Q_OBJECT

private slots:
    void valuesTakeTheServersTypes_data() {
        QTest::addColumn<QString>("dataType");
        QTest::addColumn<int>("length");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("expected");
        auto add = [](const char* name, const char* type, int length, const QVariant& value,
                      const char* expected) {
            QTest::newRow(name) << QString::fromLatin1(type) << length << value
                                << QString::fromUtf8(expected);
        };
        add("null stays null", "integer", -1, QVariant(), "<null>");
        add("empty text in a number is null", "integer", -1, QStringLiteral(""), "<null>");
        add("number text", "integer", -1, QStringLiteral(" 12 "), "int 12");
        add("words in a number", "integer", -1, QStringLiteral("twelve"),
            "refused: 'twelve' is not a whole number");
        add("old engine's true", "smallint", -1, QVariant::fromValue<qlonglong>(-1), "int -1");
        add("too big for a flag", "smallint", -1, QVariant::fromValue<qlonglong>(40000),
            "refused: '40000' does not fit: the server's column holds -32768 to 32767");
        add("too big for a long", "integer", -1, QVariant::fromValue<qlonglong>(1LL << 31),
            "refused: '2147483648' does not fit: the server's column holds -2147483648 to "
            "2147483647");
        add("money in ten-thousandths", "bigint", -1, QVariant::fromValue<qlonglong>(33700000000LL),
            "int 33700000000");
        add("whole real in money", "bigint", -1, 2.0, "int 2");
        add("fraction in money", "bigint", -1, 2.5, "refused: '2.5' is not a whole number");
        add("real text", "double precision", -1, QStringLiteral("1.5"), "real 1.5");
        add("words in a real", "real", -1, QStringLiteral("x"), "refused: 'x' is not a number");
        add("date", "date", -1, QStringLiteral("2026-01-02"), "date 2026-01-02");
        add("empty date is null", "date", -1, QStringLiteral(""), "<null>");
        add("impossible date", "date", -1, QStringLiteral("2026-02-30"),
            "refused: '2026-02-30' is not a date");
        add("slashed date", "date", -1, QStringLiteral("2026/01/02"),
            "refused: '2026/01/02' is not a date");
        add("date with midnight", "date", -1, QStringLiteral("2026-01-02 00:00:00"),
            "date 2026-01-02");
        add("date with a time of day", "date", -1, QStringLiteral("2026-01-02 10:00:00"),
            "refused: '2026-01-02 10:00:00' has a time of day; the server's column keeps the "
            "date only");
        add("date as a number", "date", -1, QVariant::fromValue<qlonglong>(20260102),
            "refused: '20260102' is not a date");
        add("moment", "timestamp without time zone", -1, QStringLiteral("2026-01-02 10:11:12"),
            "moment 2026-01-02 10:11:12");
        add("moment without seconds", "timestamp without time zone", -1,
            QStringLiteral("2026-01-02T10:11"), "moment 2026-01-02 10:11:00");
        add("moment of a date", "timestamp without time zone", -1, QStringLiteral("2026-01-02"),
            "moment 2026-01-02 00:00:00");
        add("moment in words", "timestamp without time zone", -1, QStringLiteral("yesterday"),
            "refused: 'yesterday' is not a date and time");
        add("text that fits", "character varying", 12, QStringLiteral("123456789012"),
            "text '123456789012'");
        add("text one too long", "character varying", 12, QStringLiteral("1234567890123"),
            "refused: '1234567890123' is 13 characters long; the server's column holds 12");
        add("accents count once", "character varying", 3, QStringLiteral("éè€"), "text 'éè€'");
        add("characters beyond 16 bits count once", "character varying", 2, QStringLiteral("😀😀"),
            "text '😀😀'");
        add("number in a text column", "character varying", 5,
            QVariant::fromValue<qlonglong>(12345), "text '12345'");
        add("empty text stays text", "character varying", 5, QStringLiteral(""), "text ''");
        add("text without a length", "text", -1, QString(300, QLatin1Char('a')),
            "text '" + QByteArray(300, 'a') + "'");
        add("nul character", "character varying", 10, QStringLiteral("a") + QChar(0),
            "refused: the text holds a NUL character, which the server does not store");
        add("no value where one is needed", "integer not null", -1, QVariant(),
            "refused: no value, and the server's column needs one");
        add("empty number where one is needed", "bigint not null", -1, QStringLiteral(" "),
            "refused: no value, and the server's column needs one");
        add("empty text where text is needed", "character varying not null", 3, QStringLiteral(""),
            "text ''");
        add("binary in text", "character varying", 10, QByteArray("\x01\x02"),
            "refused: binary data is not text");
    }
    void valuesTakeTheServersTypes() {
        QFETCH(QString, dataType);
        QFETCH(int, length);
        QFETCH(QVariant, value);
        QFETCH(QString, expected);
        const QString notNull = QStringLiteral(" not null");
        TargetColumn column =
            TargetColumn::of(QString(dataType).remove(notNull), length < 0 ? QVariant() : length);
        column.required = dataType.endsWith(notNull);
        QCOMPARE(outcome(value, column), expected);
    }
};

QTEST_GUILESS_MAIN(TestServerValues)
#include "test_server_values.moc"
