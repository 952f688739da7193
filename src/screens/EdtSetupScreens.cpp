#include "screens/EdtSetupScreens.h"

#include "screens/frmEDTSetup.h"

namespace brimsett {

void openEdtSetup(Database& db, AppSettings& settings, Prompter& prompter, const Clock& clock,
                  const SqlLog& log, const QString& officeFolder, QWidget* parent,
                  const QString& doctorId) {
    frmEDTSetup screen(db, settings, prompter, clock, log, officeFolder, parent);
    if (!doctorId.isEmpty()) {
        screen.showDoctor(doctorId);
    }
    screen.exec();
}

}  // namespace brimsett
