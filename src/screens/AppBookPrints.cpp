#include "screens/AppBookPrints.h"

#include "appointments/DaySheet.h"
#include "foundation/AppSettings.h"
#include "foundation/Prompter.h"
#include "reports/Report.h"
#include "screens/ReportPreview.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>

namespace brimsett::appbookprints {

using namespace appointments;

namespace {

// Answers every question with its default and keeps every message to itself.
class QuietPrompter : public Prompter {
public:
    void tell(const QString&, const QStringList&, Icon) override {}
    Answer ask(const QString&, const QStringList&, Icon, Buttons, Answer defaultAnswer) override {
        return defaultAnswer;
    }
};

DaySheetRequest requestFor(const AppSettings& settings, const QString& doctorId, const QDate& date,
                           const ShownHours& hours) {
    DaySheetRequest request;
    request.doctorId = doctorId;
    request.date = date;
    request.firstMinute = hours.firstMinute();
    request.lastMinute = hours.lastMinute();
    request.order = settings.appSortOrder == 1 ? SheetOrder::ByName : SheetOrder::ByTime;
    request.readSettings(settings);
    return request;
}

// The print options: the layout and the order. False when the desk cancelled.
bool askOptions(QWidget* parent, DaySheetRequest& request) {
    QDialog dialog(parent);
    dialog.setWindowTitle(QStringLiteral("Print Appointments"));
    auto* layout = new QComboBox(&dialog);
    layout->addItems(
        {QStringLiteral("Default"), QStringLiteral("Information"), QStringLiteral("Billing")});
    auto* order = new QComboBox(&dialog);
    order->addItems({QStringLiteral("By time"), QStringLiteral("By name")});
    order->setCurrentIndex(request.order == SheetOrder::ByName ? 1 : 0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* form = new QFormLayout(&dialog);
    form->addRow(QStringLiteral("&Layout:"), layout);
    form->addRow(QStringLiteral("&Order:"), order);
    form->addRow(buttons);
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    request.layout = SheetLayout(layout->currentIndex());
    request.order = order->currentIndex() == 1 ? SheetOrder::ByName : SheetOrder::ByTime;
    return true;
}

}  // namespace

void printDaySheet(QWidget* parent, Database& db, const AppSettings& settings, Prompter& prompter,
                   const QString& doctorId, const QDate& date, const ShownHours& hours) {
    DaySheetRequest request = requestFor(settings, doctorId, date, hours);
    if (settings.appPrintOptions && !askOptions(parent, request)) {
        return;
    }
    if (const std::optional<DaySheet> sheet = daySheet(db, prompter, request)) {
        showReportPreview(daySheetReport(*sheet), reports::ReportStyle::fromSettings(settings),
                          parent);
    }
}

void printDaySheets(QWidget* parent, Database& db, const AppSettings& settings, Prompter& prompter,
                    const QStringList& doctorIds, const QDate& date, const ShownHours& hours) {
    // Each provider's own "nothing to print" would be one box per empty provider: the
    // office hears it once, when no provider has anything.
    QuietPrompter quiet;
    std::optional<reports::Report> all;
    for (const QString& id : doctorIds) {
        const std::optional<DaySheet> sheet =
            daySheet(db, quiet, requestFor(settings, id, date, hours));
        if (!sheet) {
            continue;
        }
        reports::Report one = daySheetReport(*sheet);
        if (!all) {
            all = std::move(one);
            continue;
        }
        // Each further provider follows under the title of its own sheet.
        all->addParagraph(one.title());
        for (const reports::Report::Block& block : one.blocks()) {
            if (const auto* table = std::get_if<reports::ReportTable>(&block)) {
                all->addTable(*table);
            } else if (const auto* totals = std::get_if<reports::Report::Totals>(&block)) {
                for (const reports::TotalLine& line : totals->lines) {
                    all->addTotal(line.label, line.value);
                }
            } else if (const auto* paragraph = std::get_if<reports::Report::Paragraph>(&block)) {
                all->addParagraph(paragraph->text);
            }
        }
    }
    if (!all) {
        prompter.tell(QStringLiteral("Print Appointments"),
                      {QStringLiteral("No appointments to print.")}, Icon::Information);
        return;
    }
    showReportPreview(*all, reports::ReportStyle::fromSettings(settings), parent);
}

}  // namespace brimsett::appbookprints
