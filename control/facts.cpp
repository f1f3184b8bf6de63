#include "control/facts.h"

#include "forms/screen_texts.h"

namespace brevantis {

WebFacts WebFactsOf(const Store& store) {
  return {store[kProgramName].text, store[kCompanyName].text, store[kOSName].text, store[kWinTempDir].text};
}

ProgramFacts ProgramFactsOf(Store& store) {
  for (Prop year : {kCopyrightFromDate, kCopyrightToDate}) store[year].text = CopyrightYearShown(store[year].text);
  ProgramFacts facts;
  facts.name = store[kProgramName].text;
  facts.authors[0] = store[kAuthor1].text;
  facts.authors[1] = store[kAuthor2].text;
  facts.authors[2] = store[kAuthor3].text;
  facts.major = store[kProgramMajor].number;
  facts.minor = store[kProgramMinor].number;
  facts.revision = store[kProgramRevision].number;
  facts.copyrightFrom = store[kCopyrightFromDate].text;
  facts.copyrightTo = store[kCopyrightToDate].text;
  facts.companyName = store[kCompanyName].text;
  facts.webSite = store[kWebSiteURL].text;
  facts.sound = store[kAboutWavSound].text;
  facts.splashInterval = store[kSplashScreenInterval].number;
  facts.picture = store[kProgramPicture].picture;
  facts.icon = store[kProgramIcon].picture;
  facts.companyLogo = store[kCompanyLogo].picture;
  facts.controlVersion = store[kVersion].text;
  facts.web = WebFactsOf(store);
  return facts;
}

}  // namespace brevantis
