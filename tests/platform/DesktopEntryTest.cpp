#include <gtest/gtest.h>

#include "platform/linux/ControlGroup.h"
#include "platform/linux/DesktopEntry.h"

namespace {

using platform::DesktopEntry;
using Texts = std::vector<std::string>;

TEST(DesktopEntry, KnowsTheKeysOfALocale) {
  const struct {
    const char* locale;
    Texts keys;
  } cases[] = {
      {"sr_YU.UTF-8@Latn", {"sr_YU@Latn", "sr_YU", "sr@Latn", "sr"}},
      {"de_AT.UTF-8", {"de_AT", "de"}},
      {"ca@valencia", {"ca@valencia", "ca"}},
      {"C.UTF-8", {}},
      {"", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(platform::desktopEntryLocaleKeys(c.locale), c.keys);
}

TEST(DesktopEntry, ReadsOneGroup) {
  const DesktopEntry entry = DesktopEntry::parse(
      "# comment=1\nName=outside\n[Other]\nName=other\n[Desktop Entry]\r\nType = Application\n"
      "no sign\n#Name=comment\nName[de]=Rechner\nName[fr]=Calculette\nName[de_AT]=Rechn\\ser\\q\n"
      "Name=Calculator\nNoDisplay=true\nTryExec=calc\n"
      "Exec=\"/opt/my calc\" --a=\\\\\\\\b \"q\\\\\"\\\\$\" %U\n[Desktop Action "
      "x]\nHidden=true\n",
      {"de_AT", "de"});
  EXPECT_TRUE(entry.isApplication);
  EXPECT_TRUE(entry.noDisplay);
  EXPECT_FALSE(entry.hidden);
  EXPECT_EQ(entry.name, "Rechn er\\q");
  EXPECT_EQ(entry.tryExec, "calc");
  EXPECT_EQ(entry.command, (Texts{"/opt/my calc", "--a=\\\\b", "q\"$", "%U"}));

  const char* const names = "[Desktop Entry]\nName[de]=Rechner\nName=Calculator\n";
  EXPECT_EQ(DesktopEntry::parse(names, {"it"}).name, "Calculator");
  EXPECT_EQ(DesktopEntry::parse("[Desktop Entry]\nName[de]=Rechner\n", {}).name, std::nullopt);
}

TEST(ControlGroup, FindsTheApplicationOfAUnit) {
  const struct {
    const char* group;
    Texts identifiers;  // of the innermost scope
  } cases[] = {
      {"0::/u.slice/app-gnome-org.example.App-1234.scope",
       {"org.example.App", "gnome-org.example.App"}},
      {"0::/app.slice/app-org.example.App@autostart.service", {"org.example.App"}},
      {"0::/app-google\\x2dtool-7.scope", {"google-tool"}},
      {"0::/dbus-:1.36-org.example.App@0.service", {"org.example.App"}},
      {"0::/snap.web.view.0a2b3c4d-1111-2222-3333-444455556666.scope", {"web_view"}},
      {"5:memory:/app-no-1.scope\n1:name=systemd:/app-yes-1.scope\n0::/", {"yes"}},
      {"0::/app-x.slice/vte-spawn-1.scope", {}},
      {"0::/snap.scope\n0::/app-.scope\n0::/dbus-.service\n0::/app-a\nbroken\n::", {}},
  };
  for (const auto& c : cases) {
    const auto scopes = platform::applicationScopes(c.group);
    EXPECT_EQ(scopes.empty() ? Texts() : scopes[0].identifiers, c.identifiers) << c.group;
  }
  EXPECT_EQ(platform::applicationScopes("0::/a/app-x-1.scope/b/c")[0].path, "/a/app-x-1.scope");
}

}  // namespace
