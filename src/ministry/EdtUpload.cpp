#include "ministry/EdtUpload.h"

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "ministry/BatchRegister.h"
#include "ministry/EdtFileTransfer.h"
#include "ministry/ModemSession.h"
#include "ministry/SubmitSummary.h"

#include <QFileInfo>
#include <QSqlQuery>

namespace brimsett {

EdtUpload::EdtUpload(Database& db, Prompter& prompter, const Clock& clock, const SqlLog& log,
                     ModemSession& session, EdtEventSink sink, EdtFileTransfer& transfer,
                     QString officeFolder, int timeOutSeconds, int baud, EdtHostMenu menu)
    : m_db(db),
      m_prompter(prompter),
      m_clock(clock),
      m_log(log),
      m_session(session),
      m_sink(std::move(sink)),
      m_transfer(transfer),
      m_office(std::move(officeFolder)),
      m_timeOut(timeOutSeconds),
      m_baud(baud),
      m_menu(std::move(menu)) {}

QStringList EdtUpload::unsubmitted(const QString& doctorId) {
    // A missing number is stored as NULL by some and as '' by others.
    QSqlQuery q = m_db.exec(
        QStringLiteral("Select Distinct b.FileName From batches b, doctors d"
                       " Where d.DoctorID=? And b.SubmitDate Is Null And b.FileName Is Not Null"
                       " And Coalesce(b.GroupNum,'')=Coalesce(d.GroupNum,'')"
                       " And Coalesce(b.ProviderNum,'')=Coalesce(d.ProviderNum,'')"
                       " And Coalesce(b.SpecCode,'')=Coalesce(d.SpecCode,'')"
                       " Order By b.FileName"),
        {doctorId}, QStringLiteral("reading the files not yet submitted"));
    QStringList names;
    while (q.next()) {
        names << q.value(0).toString();
    }
    return names;
}

void EdtUpload::error(const QString& text) const {
    if (m_sink) {
        m_sink(EdtEvent::Error, text);
    }
}

EdtUpload::Result EdtUpload::run(const QString& doctorId) {
    Result result;
    QStringList names;
    try {
        names = unsubmitted(doctorId);
    } catch (const DbError& e) {
        error(e.message());
    }
    result.files = int(names.size());
    bool atMenu = true;
    for (const QString& name : std::as_const(names)) {
        const Sent sent = upload(name, atMenu);
        if (sent == Sent::Yes) {
            ++result.sent;
        } else if (sent == Sent::Stop) {
            result.lineLost = m_session.line().lost();
            break;
        }
    }
    result.summary = submitSummary(result.sent, result.files);
    for (const QString& line : std::as_const(result.summary)) {
        m_session.step(line);
    }
    return result;
}

EdtUpload::Sent EdtUpload::upload(const QString& name, bool& atMenu) {
    m_session.step(QStringLiteral("Uploading '") + name + QStringLiteral("' ..."));
    const QString path = m_office + name;
    const bool plainName = !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'));
    if (!plainName || !QFileInfo(path).isFile()) {
        error(QStringLiteral("The file to be submitted (%1) does not exist.").arg(name));
        return Sent::No;
    }
    const QString timedOut = QStringLiteral("Time out error occurred.");
    const QString notSent = QStringLiteral("Upload was not successful.");
    // After a confirmation the host shows its menu again, before it takes another choice.
    if (!atMenu) {
        const TextSeen menu = m_session.waitFor(m_menu.shown, m_timeOut);
        if (!menu) {
            error(menu.lost ? notSent : timedOut);
            return Sent::Stop;
        }
    }
    atMenu = false;
    if (!m_session.send(m_menu.upload + QLatin1Char('\r'))) {
        error(notSent);
        return Sent::Stop;
    }
    const TextSeen goAhead = m_session.waitFor(kGoAhead, m_timeOut);
    if (!goAhead) {
        error(goAhead.lost ? notSent : timedOut);
        return goAhead.lost ? Sent::Stop : Sent::No;
    }
    const int seconds = EdtFileTransfer::sendSeconds(QFileInfo(path).size(), m_baud, m_timeOut);
    switch (m_transfer.send(path, seconds)) {
        case TransferOutcome::Done:
            break;
        case TransferOutcome::Lost:
            error(notSent);
            return Sent::Stop;
        case TransferOutcome::Aborted:
            error(notSent);
            return Sent::No;
        case TransferOutcome::TimedOut:
            error(timedOut);
            return Sent::No;
    }
    const TextSeen confirmed =
        m_session.waitFor(kConfirmed + QLatin1Char(';') + m_menu.shown, m_timeOut);
    if (!confirmed) {
        error(confirmed.lost ? notSent : timedOut);
        return confirmed.lost ? Sent::Stop : Sent::No;
    }
    atMenu = confirmed.index == 1;
    m_session.step(QStringLiteral("File uploaded successfully!"));
    try {
        BatchRegister(m_db, m_prompter, m_log).markSubmitted(name, m_clock.today());
    } catch (const DbError& e) {
        error(QStringLiteral("%1 was uploaded, but its submission date could not be "
                             "recorded: %2")
                  .arg(name, e.message()));
        return Sent::No;
    }
    return Sent::Yes;
}

}  // namespace brimsett
