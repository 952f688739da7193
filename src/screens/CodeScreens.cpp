#include "screens/CodeScreens.h"

#include "foundation/AccessLevels.h"
#include "foundation/ActionRegistry.h"
#include "foundation/AppSettings.h"
#include "foundation/Money.h"
#include "screens/AppSetupScreens.h"
#include "screens/CodeEditors.h"
#include "screens/SlotGuard.h"
#include "screens/ThirdPartyScreens.h"
#include "screens/frmManageCodes.h"
#include "screens/frmOHIPCodes.h"

#include <QList>
#include <QPointer>

#include <functional>

namespace brimsett {

namespace {

constexpr int kActionManageCodes = 12;

// The list's last entry, after the code tables: the payers of third party claims, whose
// window is the registry's.
const QString kThirdPartyTitle = QStringLiteral("Third Party Payers");
const QString kAppointmentSetupTitle = QStringLiteral("Appointment Setup");

// Opens the list and each editor once, and brings them forward when asked again.
class CodeScreenOpener : public QObject {
public:
    CodeScreenOpener(Database& db, const AppSettings& settings, const SqlLog& log,
                     Prompter& prompter, const MoneyFormat& money, const ActionRegistry& registry,
                     QWidget* parent)
        : QObject(parent),
          m_registry(registry),
          m_db(db),
          m_log(log),
          m_prompter(prompter),
          m_parent(parent),
          m_money(money),
          m_scheduleFolder(settings.appPath) {
        add(codetables::serviceCodes().title, [this]() -> CodeTableEditor* {
            auto* screen =
                new frmOHIPCodes(m_db, m_log, m_prompter, m_money, m_scheduleFolder, m_parent);
            connect(screen, &frmOHIPCodes::folderUsed, this,
                    guarded(this, [this](const QString& folder) { m_scheduleFolder = folder; }));
            return screen;
        });
        add(codetables::serviceCodesDirect().title, [this]() -> CodeTableEditor* {
            return new frmCodes(m_db, m_log, m_prompter, m_money, m_parent);
        });
        add(codetables::diagCodes().title, [this]() -> CodeTableEditor* {
            return new frmDiagCodes(m_db, m_log, m_prompter, m_money, m_parent);
        });
        add(codetables::explCodes().title, [this]() -> CodeTableEditor* {
            return new frmExplCodes(m_db, m_log, m_prompter, m_money, m_parent);
        });
        for (const CodeTable* table :
             {&codetables::quickServCodes(), &codetables::quickDiagCodes(),
              &codetables::quickCityCodes(), &codetables::quickFacCodes()}) {
            add(table->title, [this, table]() -> CodeTableEditor* {
                return new frmQuickCodes(*table, m_db, m_log, m_prompter, m_money, m_parent);
            });
        }
    }

    void showList() {
        if (!m_list) {
            QStringList titles;
            for (const Editor& e : std::as_const(m_editors)) {
                titles << e.title;
            }
            // The payers and the book's slot types and templates are lists the office keeps
            // too; their screens live elsewhere and are reached from here.
            titles << kThirdPartyTitle << kAppointmentSetupTitle;
            m_list = new frmManageCodes(titles, m_parent);
            m_list->setAttribute(Qt::WA_DeleteOnClose);
            connect(m_list, &frmManageCodes::chosen, this,
                    guarded(this, &CodeScreenOpener::showEditor));
        }
        bringForward(m_list);
    }

    void showEditor(int index) {
        if (index == m_editors.size()) {
            m_registry.runAction(kActionThirdParty);
            return;
        }
        if (index == m_editors.size() + 1) {
            m_registry.runAction(kActionAppointmentSetup);
            return;
        }
        Editor& editor = m_editors[index];
        if (!editor.window) {
            editor.window = editor.make();
            editor.window->setAttribute(Qt::WA_DeleteOnClose);
        }
        bringForward(editor.window);
    }

private:
    struct Editor {
        QString title;
        std::function<CodeTableEditor*()> make;
        QPointer<CodeTableEditor> window;
    };

    void add(const QString& title, std::function<CodeTableEditor*()> make) {
        m_editors.append({title, std::move(make), {}});
    }

    static void bringForward(QWidget* window) {
        window->show();
        window->raise();
        window->activateWindow();
    }

    const ActionRegistry& m_registry;
    Database& m_db;
    const SqlLog& m_log;
    Prompter& m_prompter;
    QWidget* m_parent;
    MoneyFormat m_money;
    QString m_scheduleFolder;  // for this run; the settings have no place for it
    QList<Editor> m_editors;
    QPointer<frmManageCodes> m_list;
};

}  // namespace

void registerCodeScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                         const SqlLog& log, Prompter& prompter, const MoneyFormat& money,
                         const AccessLevels& access, QWidget* parent) {
    auto* opener = new CodeScreenOpener(db, settings, log, prompter, money, registry, parent);
    registry.setAction(kActionManageCodes, QStringLiteral("Manage Codes"),
                       [opener, &access, &prompter] {
                           if (access.require(AccessLevels::kBillingSecretary, prompter)) {
                               opener->showList();
                           }
                       });
}

}  // namespace brimsett
