// frmAbout: the program's name and version, a copyright line, a web link
// and an e-mail link. lib_ShowAbout fills it, so that the same form serves
// any host program; it is made afresh for each opening.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "form/controls.hpp"
#include "form/form.hpp"

namespace ostrivane {

class Desktop;

inline constexpr char kAboutFormName[] = "frmAbout";

class AboutForm : public form::Form {
public:
    // A fixed dialog without a task bar entry, centred on its owner; Width
    // and Height are those of the client area.
    AboutForm();

    form::PictureBox imgIcon;
    form::Label lblVersion, lblCopyright, Label1, Label2;
    form::HyperLinkLabel hlkHome, hlkEmail;
    form::CommandButton cmdOk;
    form::Line linHeader, linLinksTop, linLinksBottom;

    void cmdOk_Click();
    // Hides the form; it is not to be shown again.
    void Unload();
    bool Unloaded() const { return unloaded_; }

private:
    bool unloaded_ = false;
};

// The year of the local clock now.
int CurrentYear();

// Fills a fresh frmAbout and shows it modally over owner (none: centred on
// the screen). icon: a picture name, empty for none. A blank subject adds
// none to the e-mail link. year: read once, as the form opens.
void lib_ShowAbout(Desktop& desktop, const form::Form* owner, std::string_view name, std::string_view version,
                   std::string_view holder, std::string_view home, std::string_view email, std::string_view subject,
                   std::string_view icon, const std::function<int()>& year = CurrentYear);

}  // namespace ostrivane
