#include "screens/frmBMain.h"

#include "foundation/ActionRegistry.h"
#include "foundation/AppSettings.h"
#include "foundation/Prompter.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QShortcut>
#include <QStatusBar>
#include <QVBoxLayout>

namespace brimsett {

namespace {

const QString kNotAvailable = QStringLiteral("This part of Brimsett is not available yet.");

const char* const kStyle = R"(
QWidget#menuPage { background: #eef2f6; }
QLabel#menuHeader { background: #1f3a5f; color: white; padding: 10px 24px; }
QLabel#menuTitle { color: #1f3a5f; padding: 0 0 4px 10px; }
QPushButton#menuEntry { text-align: left; padding: 8px 18px; color: #1b2733; background: white;
                        border: 1px solid #c5cfdb; border-radius: 6px; }
QPushButton#menuEntry:hover { background: #e3ecf7; }
QPushButton#menuEntry:focus { background: #2f5d8c; color: white; border-color: #1f3a5f; }
)";

const char* const kHintStyle = "color: #6b7a8c; background: transparent;";
const char* const kHintFocusStyle = "color: #dce7f3; background: transparent;";

// Key codes of the menu table as the keyboard's keys. F1-F24 are 112-135.
int qtKeyOf(int code) {
    if (code >= 112 && code <= 135) {
        return Qt::Key_F1 + (code - 112);
    }
    if ((code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9')) {
        return code;
    }
    switch (code) {
        case 8:
            return Qt::Key_Backspace;
        case 9:
            return Qt::Key_Tab;
        case 13:
            return Qt::Key_Return;
        case 27:
            return Qt::Key_Escape;
        case 32:
            return Qt::Key_Space;
        case 33:
            return Qt::Key_PageUp;
        case 34:
            return Qt::Key_PageDown;
        case 35:
            return Qt::Key_End;
        case 36:
            return Qt::Key_Home;
        case 37:
            return Qt::Key_Left;
        case 38:
            return Qt::Key_Up;
        case 39:
            return Qt::Key_Right;
        case 40:
            return Qt::Key_Down;
        case 45:
            return Qt::Key_Insert;
        case 46:
            return Qt::Key_Delete;
        default:
            return 0;
    }
}

}  // namespace

frmBMain::frmBMain(const QList<MenuEntry>& entries, const AppSettings& settings,
                   ActionRegistry& actions, Prompter& prompter, QWidget* parent)
    : QMainWindow(parent),
      m_model(entries),
      m_actions(actions),
      m_prompter(ScreenPrompter::attach(prompter, this)) {
    setWindowTitle(QStringLiteral("Brimsett"));

    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("menuPage"));
    page->setStyleSheet(QString::fromLatin1(kStyle));
    auto* outer = new QVBoxLayout(page);
    outer->setContentsMargins(0, 0, 0, 0);

    auto* header = new QLabel(QStringLiteral("Brimsett"), page);
    header->setObjectName(QStringLiteral("menuHeader"));
    QFont headerFont = header->font();
    headerFont.setPointSize(headerFont.pointSize() + 6);
    headerFont.setBold(true);
    header->setFont(headerFont);
    outer->addWidget(header);

    // The menu column sits in the middle of the window at a readable width.
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(24, 28, 24, 24);
    m_title = new QLabel(page);
    m_title->setObjectName(QStringLiteral("menuTitle"));
    column->addWidget(m_title);
    column->addSpacing(12);
    m_list = new QWidget(page);
    m_listLayout = new QVBoxLayout(m_list);
    m_listLayout->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_list);
    column->addStretch(1);
    row->addLayout(column, 3);
    row->addStretch(1);
    outer->addLayout(row, 1);
    setCentralWidget(page);

    statusBar()->setSizeGripEnabled(false);

    applySettings(settings);
    buildShortcuts();
    // The menu's F-keys work from every window of the program, as the office is used to.
    qApp->installEventFilter(this);
    showSubMenu(MenuModel::kMainMenu);
    resize(760, 600);
}

QStringList frmBMain::visibleCaptions() const {
    QStringList captions;
    for (const MenuEntry& e : m_shown) {
        captions << e.caption;
    }
    return captions;
}

void frmBMain::applySettings(const AppSettings& settings) {
    m_fontFamily = settings.menuFont;
    m_fontSize = settings.menuSize > 0 ? settings.menuSize : 16;
    m_skip = std::max(0, settings.menuSkip);
    if (!m_buttons.isEmpty() || m_title->text().size() > 0) {
        showSubMenu(m_current);
    }
}

QFont frmBMain::menuFont() const {
    QFont font(m_fontFamily);
    font.setPointSize(m_fontSize);
    return font;
}

QKeySequence frmBMain::sequenceOf(int shortCutMod, int shortCutKey) {
    const int key = qtKeyOf(shortCutKey);
    if (key == 0) {
        return {};
    }
    Qt::KeyboardModifiers mods;
    if (shortCutMod & MenuModel::kShift) {
        mods |= Qt::ShiftModifier;
    }
    if (shortCutMod & MenuModel::kCtrl) {
        mods |= Qt::ControlModifier;
    }
    if (shortCutMod & MenuModel::kAlt) {
        mods |= Qt::AltModifier;
    }
    return QKeySequence(QKeyCombination(mods, static_cast<Qt::Key>(key)));
}

void frmBMain::buildShortcuts() {
    QSet<QPair<int, int>> seen;
    for (const MenuEntry& e : m_model.entries()) {
        const QPair<int, int> combination(e.shortCutMod, e.shortCutKey);
        const QKeySequence sequence = sequenceOf(e.shortCutMod, e.shortCutKey);
        if (sequence.isEmpty() || seen.contains(combination)) {
            continue;
        }
        seen.insert(combination);
        // One shortcut per combination; the model decides which entry it means.
        auto* shortcut = new QShortcut(sequence, this);
        shortcut->setContext(Qt::WindowShortcut);
        shortcut->setAutoRepeat(false);
        connect(
            shortcut, &QShortcut::activated, this, guarded(this, [this, combination] {
                if (const auto entry = m_model.entryForKey(combination.first, combination.second)) {
                    runEntry(*entry);
                }
            }));
    }
}

void frmBMain::rebuildAccessShortcuts() {
    for (QShortcut* s : std::as_const(m_accessShortcuts)) {
        s->setEnabled(false);
        s->deleteLater();
    }
    m_accessShortcuts.clear();
    for (const MenuEntry& e : std::as_const(m_shown)) {
        const QChar letter = MenuModel::accessLetter(e.caption);
        // A combination of the menu table wins over the access letter.
        if (letter.isNull() || m_model.entryForKey(MenuModel::kAlt, letter.unicode())) {
            continue;
        }
        auto* shortcut = new QShortcut(
            QKeySequence(QKeyCombination(Qt::AltModifier, static_cast<Qt::Key>(letter.unicode()))),
            this);
        shortcut->setContext(Qt::WindowShortcut);
        shortcut->setAutoRepeat(false);
        const MenuEntry entry = e;
        connect(shortcut, &QShortcut::activated, this,
                guarded(this, [this, entry] { runEntry(entry); }));
        m_accessShortcuts << shortcut;
    }
}

void frmBMain::showSubMenu(int subMenu) {
    const QList<MenuEntry> items = m_model.items(subMenu);
    const QString title = m_model.title(subMenu);
    if (items.isEmpty() && subMenu != m_current) {
        m_prompter.tell(title.isEmpty() ? QStringLiteral("Brimsett") : title,
                        {QStringLiteral("This menu has no entries.")}, Icon::Information);
        return;
    }
    // A button may be the one whose click brought us here: let it finish first.
    for (QPushButton* b : std::as_const(m_buttons)) {
        b->hide();
        m_listLayout->removeWidget(b);
        b->deleteLater();
    }
    m_buttons.clear();
    m_current = subMenu;
    m_shown = items;

    QFont titleFont = menuFont();
    titleFont.setPointSize(m_fontSize + m_fontSize / 3);
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    m_title->setText(title);
    m_title->setVisible(!title.isEmpty());

    m_listLayout->setSpacing(m_skip);
    const QFont font = menuFont();
    QFont hintFont = font;
    hintFont.setPointSize(std::max(8, m_fontSize * 2 / 3));
    for (const MenuEntry& e : std::as_const(m_shown)) {
        auto* button = new QPushButton(e.caption, m_list);
        button->setShortcut(QKeySequence());  // access letters are handled by the window
        button->setObjectName(QStringLiteral("menuEntry"));
        button->setFont(font);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setMinimumWidth(360);
        const QString hintText = hintOf(e);
        if (!hintText.isEmpty()) {
            auto* hintLayout = new QHBoxLayout(button);
            hintLayout->setContentsMargins(0, 0, 18, 0);
            hintLayout->addStretch(1);
            auto* hint = new QLabel(hintText, button);
            hint->setObjectName(QStringLiteral("menuHint"));
            // The sub-menu mark is a single character: draw it at the caption's size.
            hint->setFont(hintText.size() == 1 ? font : hintFont);
            hint->setStyleSheet(QString::fromLatin1(kHintStyle));
            hint->setAttribute(Qt::WA_TransparentForMouseEvents);
            hintLayout->addWidget(hint);
        }
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, guarded(this, [this, e] { runEntry(e); }));
        m_listLayout->addWidget(button);
        button->show();  // at once, so that it can take the focus now
        m_buttons << button;
    }
    rebuildAccessShortcuts();
    if (!m_buttons.isEmpty()) {
        m_buttons.first()->setFocus(Qt::OtherFocusReason);
    }
}

QString frmBMain::hintOf(const MenuEntry& entry) const {
    const QKeySequence keys = sequenceOf(entry.shortCutMod, entry.shortCutKey);
    if (!keys.isEmpty()) {
        return keys.toString(QKeySequence::NativeText);
    }
    const MenuModel::Step step = MenuModel::stepFor(entry, m_current);
    if (step.kind == MenuModel::Step::Kind::ShowSubMenu) {
        return step.value == MenuModel::kMainMenu ? QStringLiteral("Esc")
                                                  : QStringLiteral("\u203A");
    }
    return {};
}

void frmBMain::runEntry(const MenuEntry& entry) {
    const MenuModel::Step step = MenuModel::stepFor(entry, m_current);
    switch (step.kind) {
        case MenuModel::Step::Kind::ShowSubMenu:
            showSubMenu(step.value);
            return;
        case MenuModel::Step::Kind::Exit:
            close();
            return;
        case MenuModel::Step::Kind::RunAction:
            if (!m_actions.runAction(step.value)) {
                m_prompter.tell(MenuModel::plainCaption(entry.caption), {kNotAvailable},
                                Icon::Information);
            }
            return;
    }
}

void frmBMain::setStatusText(const QString& text) {
    if (text.isEmpty()) {
        statusBar()->clearMessage();
    } else {
        statusBar()->showMessage(text);
    }
}

void frmBMain::closeEvent(QCloseEvent* event) {
    // The record windows beside the menu close first, each asking about unsaved changes; one
    // that stays open keeps the program running.
    for (QWidget* window : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (window->isWindow() && window->isVisible() && !window->close()) {
            event->ignore();
            return;
        }
    }
    if (!m_shutDown) {
        m_shutDown = true;
        emit shuttingDown();
    }
    event->accept();
}

void frmBMain::moveFocus(int step) {
    if (m_buttons.isEmpty()) {
        return;
    }
    const int count = static_cast<int>(m_buttons.size());
    const int at = static_cast<int>(m_buttons.indexOf(qobject_cast<QPushButton*>(focusWidget())));
    const int next = at < 0 ? 0 : ((at + step) % count + count) % count;
    m_buttons[next]->setFocus(Qt::TabFocusReason);
}

bool frmBMain::keyFromOtherWindow(QWidget* target, const QKeyEvent* key) {
    // Only the F-keys reach across windows: letters and their combinations belong to the
    // field being typed in. A dialog waiting for an answer keeps them too, and the menu's own
    // window has its shortcuts. A window's own shortcut on a key has already taken it.
    if (key->key() < Qt::Key_F1 || key->key() > Qt::Key_F24 || target->window() == this ||
        QApplication::activeModalWidget() != nullptr) {
        return false;
    }
    const Qt::KeyboardModifiers mods = key->modifiers();
    const int modifiers = (mods & Qt::ShiftModifier ? MenuModel::kShift : 0) |
                          (mods & Qt::ControlModifier ? MenuModel::kCtrl : 0) |
                          (mods & Qt::AltModifier ? MenuModel::kAlt : 0);
    const auto entry = m_model.entryForKey(modifiers, 112 + (key->key() - Qt::Key_F1));
    if (!entry) {
        return false;
    }
    const MenuModel::Step step = MenuModel::stepFor(*entry, m_current);
    if (step.kind != MenuModel::Step::Kind::RunAction || !m_actions.hasAction(step.value)) {
        return false;
    }
    m_actions.runAction(step.value);
    return true;
}

bool frmBMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched->isWidgetType() &&
        keyFromOtherWindow(static_cast<QWidget*>(watched), static_cast<QKeyEvent*>(event))) {
        return true;
    }
    auto* button = qobject_cast<QPushButton*>(watched);
    const int index = button ? static_cast<int>(m_buttons.indexOf(button)) : -1;
    if (index < 0) {
        return QMainWindow::eventFilter(watched, event);
    }
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        if (auto* hint = button->findChild<QLabel*>(QStringLiteral("menuHint"))) {
            hint->setStyleSheet(QString::fromLatin1(
                event->type() == QEvent::FocusIn ? kHintFocusStyle : kHintStyle));
        }
        return false;
    }
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    const Qt::KeyboardModifiers mods = key->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (mods != Qt::NoModifier) {
        return false;
    }
    switch (key->key()) {
        case Qt::Key_Up:
            moveFocus(-1);
            return true;
        case Qt::Key_Down:
            moveFocus(1);
            return true;
        case Qt::Key_Home:
            m_buttons.first()->setFocus(Qt::TabFocusReason);
            return true;
        case Qt::Key_End:
            m_buttons.last()->setFocus(Qt::TabFocusReason);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            runEntry(m_shown.at(index));
            return true;
        case Qt::Key_Escape:
            if (m_current != MenuModel::kMainMenu) {
                showSubMenu(MenuModel::kMainMenu);
            }
            return true;
        default:
            break;
    }
    // The plain access letter, while the menu has the focus.
    const QString text = key->text();
    if (text.size() == 1 && text[0].isLetterOrNumber()) {
        if (const auto entry = m_model.entryForLetter(m_current, text[0])) {
            runEntry(*entry);
            return true;
        }
    }
    return false;
}

}  // namespace brimsett
