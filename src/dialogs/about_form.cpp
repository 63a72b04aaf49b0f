#include "dialogs/about_form.hpp"

#include <ctime>

#include "lib/numbers.hpp"
#include "lib/text.hpp"
#include "platform/desktop.hpp"

namespace ostrivane {

namespace {

constexpr char kCopyrightSign = '\xA9';  // Latin-1

// Left$ of the run time: at most count characters.
std::string_view Left(std::string_view text, std::size_t count) { return text.substr(0, count); }

std::string BlanksToUnderscores(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c == ' ') c = '_';
    return out;
}

}  // namespace

AboutForm::AboutForm()
    : form::Form(kAboutFormName),
      imgIcon(this, "imgIcon"),
      lblVersion(this, "lblVersion"),
      lblCopyright(this, "lblCopyright"),
      Label1(this, "Label1"),
      Label2(this, "Label2"),
      hlkHome(this, "hlkHome"),
      hlkEmail(this, "hlkEmail"),
      cmdOk(this, "cmdOk"),
      linHeader(this, "linHeader"),
      linLinksTop(this, "linLinksTop"),
      linLinksBottom(this, "linLinksBottom") {
    Width = 5250;
    Height = 3375;
    imgIcon.Move(105, 120, 480, 480);
    lblVersion.Move(795, 180, 4215, 285);
    lblCopyright.Move(795, 420, 2805, 285);
    Label1.Move(240, 1935, 465, 225);
    Label1.SetCaption("Web:");
    hlkHome.Move(825, 1905, 4215, 225);
    Label2.Move(240, 2250, 465, 225);
    Label2.SetCaption("Email:");
    hlkEmail.Move(825, 2220, 4215, 225);
    cmdOk.Move(2250, 2865, 825, 405);
    cmdOk.SetCaption("&Ok");
    cmdOk.Cancel = true;
    // One line under the header, two around the links.
    linHeader.Move(105, 840, 5040, 0);
    linLinksTop.Move(105, 1770, 5040, 0);
    linLinksBottom.Move(105, 2565, 5040, 0);

    cmdOk.Click.Connect([this] { cmdOk_Click(); });
}

void AboutForm::cmdOk_Click() { Unload(); }

void AboutForm::Unload() {
    unloaded_ = true;
    SetVisible(false);
}

int CurrentYear() {
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    return local != nullptr ? local->tm_year + 1900 : 1970;
}

void lib_ShowAbout(Desktop& desktop, const form::Form* owner, std::string_view name, std::string_view version,
                   std::string_view holder, std::string_view home, std::string_view email, std::string_view subject,
                   std::string_view icon, const std::function<int()>& year) {
    AboutForm about;
    about.CentreOwner = owner;
    about.SetCaption("About " + std::string(name));
    if (!icon.empty()) about.imgIcon.SetPicture(std::string(icon));
    about.lblVersion.SetCaption(std::string(name) + "  v" + std::string(version));
    about.lblCopyright.SetCaption(std::string("Copyright ") + kCopyrightSign + DecimalText(year()) + " " +
                                  std::string(holder));

    about.hlkHome.SetCaption(std::string(home));
    about.hlkHome.SetAddress(LCase(Left(home, 7)) == "http://" ? std::string(home) : "http://" + std::string(home));

    const std::string mail = BlanksToUnderscores(email);
    about.hlkEmail.SetCaption(mail);
    // Nine characters against a word of seven: only the bare word itself
    // escapes the prefix.
    std::string address = LCase(Left(mail, 9)) == "mailto:" ? mail : "mailto:" + mail;
    if (!subject.empty()) address += "?Subject=" + std::string(subject);
    about.hlkEmail.SetAddress(std::move(address));

    desktop.ShowModal(about);
    // Closed by its close box rather than by OK: it goes all the same.
    about.Unload();
}

}  // namespace ostrivane
