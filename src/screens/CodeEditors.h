#pragma once

#include "screens/CodeTableEditor.h"

// The code tables that need nothing beyond the editor itself.
namespace brimsett {

// "Direct Service Codes": the office's own fees for services billed to patients directly.
class frmCodes : public CodeTableEditor {
    Q_OBJECT

public:
    frmCodes(Database& db, const SqlLog& log, Prompter& prompter, const MoneyFormat& money,
             QWidget* parent = nullptr)
        : CodeTableEditor(codetables::serviceCodesDirect(), db, log, prompter, money, parent) {}
};

// "Diagnostic Codes".
class frmDiagCodes : public CodeTableEditor {
    Q_OBJECT

public:
    frmDiagCodes(Database& db, const SqlLog& log, Prompter& prompter, const MoneyFormat& money,
                 QWidget* parent = nullptr)
        : CodeTableEditor(codetables::diagCodes(), db, log, prompter, money, parent) {}
};

// "Explanatory Codes": the ministry's reasons on a remittance advice.
class frmExplCodes : public CodeTableEditor {
    Q_OBJECT

public:
    frmExplCodes(Database& db, const SqlLog& log, Prompter& prompter, const MoneyFormat& money,
                 QWidget* parent = nullptr)
        : CodeTableEditor(codetables::explCodes(), db, log, prompter, money, parent) {}
};

// One of the quick-code tables: short keys typed during entry that expand to codes.
class frmQuickCodes : public CodeTableEditor {
    Q_OBJECT

public:
    frmQuickCodes(const CodeTable& table, Database& db, const SqlLog& log, Prompter& prompter,
                  const MoneyFormat& money, QWidget* parent = nullptr)
        : CodeTableEditor(table, db, log, prompter, money, parent) {}
};

}  // namespace brimsett
