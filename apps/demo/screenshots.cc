#include "apps/demo/screenshots.h"

#include <filesystem>
#include <memory>

#include "apps/demo/bound_control.h"
#include "family/registry.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/qt/qt_toolkit.h"

namespace tarnsheets {

std::vector<std::string> RenderScreenshots(QtToolkit& toolkit, const std::string& database,
                                           const std::string& directory,
                                           std::vector<std::string> classes) {
  if (classes.empty()) {
    for (const ControlClass& c : ControlClasses()) classes.emplace_back(c.name);
  }
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) {
    throw Failure(kErrInvalidProcedureCall,
                  "Cannot create the directory \"" + directory + "\": " + error.message());
  }
  const bool chinese = MessageLanguage() == kLanguageChinese;
  const std::vector<std::pair<std::string, std::string>> host_commands = {
      {"Mail", chinese ? "邮件" : "Mail"}, {"Print", chinese ? "打印" : "Print"}};
  std::vector<std::string> written;
  for (const std::string& class_name : classes) {
    std::shared_ptr<Form> form = toolkit.CreateForm("FrmScreenshot");
    try {
      auto bound = BoundControl::Open(toolkit, *form, class_name, database, nullptr, host_commands);
      UserControl& host = bound->Control().Host();
      form->SetClientSize(host.Width(), host.Height());
      form->Show();
      toolkit.ProcessEvents();
      const std::string path = directory + "/" + class_name + ".png";
      toolkit.SaveScreenshot(host, path);
      written.push_back(path);
      bound.reset();
    } catch (...) {
      toolkit.Unload(*form);
      throw;
    }
    toolkit.Unload(*form);
    toolkit.ProcessEvents();
  }
  return written;
}

}  // namespace tarnsheets
