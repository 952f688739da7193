#include "screens/CardCheckOptionsPage.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace brimsett {

namespace {

QLineEdit* edit(const QString& text, int maxLength, const QString& hint, QWidget* parent) {
    auto* e = new QLineEdit(text, parent);
    if (maxLength > 0) {
        e->setMaxLength(maxLength);
    }
    e->setPlaceholderText(hint);
    return e;
}

}  // namespace

CardCheckOptionsPage::CardCheckOptionsPage(const hcv::HcvSettings& s, QWidget* parent)
    : QWidget(parent) {
    auto* form = new QFormLayout(this);
    m_polling = new QCheckBox(QStringLiteral("&Read card answers while Brimsett runs"), this);
    m_polling->setChecked(s.pollingOn);
    // The request carries the values as the card-check service issued them; longer ones
    // would be cut, so the fields take no more.
    m_hx = edit(s.hx, 0, QStringLiteral("given with the service"), this);
    m_fx = edit(s.fx, 7, QString(), this);
    m_px = edit(s.px, 10, QString(), this);
    m_mx = edit(s.mx, 8, QString(), this);
    m_ho = edit(s.ho, 0, QStringLiteral("HCVOUT/ in the office folder"), this);
    m_hi = edit(s.hi, 0, QStringLiteral("HCVIN/ in the office folder"), this);
    form->addRow(m_polling);
    form->addRow(QStringLiteral("&Installation ID:"), m_hx);
    form->addRow(QStringLiteral("Value &F (7):"), m_fx);
    form->addRow(QStringLiteral("Value &P (10):"), m_px);
    form->addRow(QStringLiteral("Value &M (8):"), m_mx);
    form->addRow(QStringLiteral("Re&quest folder:"), m_ho);
    form->addRow(QStringLiteral("&Answer folder:"), m_hi);
    auto* note = new QLabel(QStringLiteral("Reading answers starts or stops when Brimsett starts "
                                           "again. The request folder is used as written: end "
                                           "it with \"/\"."),
                            this);
    note->setWordWrap(true);
    form->addRow(note);
}

hcv::HcvSettings CardCheckOptionsPage::settings() const {
    hcv::HcvSettings s;
    s.pollingOn = m_polling->isChecked();
    s.hx = m_hx->text().trimmed();
    s.fx = m_fx->text();
    s.px = m_px->text();
    s.mx = m_mx->text();
    s.ho = m_ho->text().trimmed();
    s.hi = m_hi->text().trimmed();
    return s;
}

}  // namespace brimsett
