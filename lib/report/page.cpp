// SPDX-License-Identifier: Apache-2.0
#include "page.h"

#include "escape.h"

namespace NVORNQDX20::NReport {

std::string PageHead(const std::string& title, bool hasScript) {
  const std::string script = hasScript ? "'" + std::string(kScriptHash) + "'" : "'none'";
  // Nothing is loaded, sent or framed; texts cannot become elements by a mistake of the script.
  const std::string policy =
      "default-src 'none'; script-src " + script + "; style-src '" + kStyleHash +
      "'; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'; "
      "trusted-types 'none'";
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
         policy +
         "\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         "<meta name=\"color-scheme\" content=\"light dark\">\n"
         "<meta name=\"referrer\" content=\"no-referrer\">\n<title>" +
         Escaped(title) + "</title>\n<style>" + kStyle + "</style>\n</head>\n";
}

}  // namespace NVORNQDX20::NReport
