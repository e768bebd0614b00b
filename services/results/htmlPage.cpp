// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/htmlPage.h"

namespace {

// Light and dark grounds alike keep the pictures on white; paper has no shadows and no colours behind text.
const char* const styleSheet = R"(
:root { color-scheme: light; --ink: #1b1f24; --soft: #5c6670; --line: #d9dee3; --ground: #f4f6f8; --accent: #0b5c8a; }
* { box-sizing: border-box; }
body { margin: 0; background: var(--ground); color: var(--ink);
       font: 15px/1.5 "Segoe UI", "Helvetica Neue", Helvetica, Arial, "DejaVu Sans", sans-serif; }
main { max-width: 1120px; margin: 0 auto; padding: 32px 40px 48px; background: #fff; min-height: 100vh; }
h1 { font-size: 28px; line-height: 1.2; margin: 0; }
h2 { font-size: 18px; margin: 36px 0 12px; padding-bottom: 4px; border-bottom: 2px solid var(--accent); }
.subtitle { color: var(--soft); margin: 4px 0 0; overflow-wrap: anywhere; }
.note { margin: 16px 0 0; padding: 8px 14px; border-left: 4px solid var(--accent); background: var(--ground);
        white-space: pre-wrap; }
.warning { margin: 12px 0 0; padding: 8px 14px; border-left: 4px solid #c77700; background: #fff6e5; }
dl.facts { display: grid; grid-template-columns: repeat(auto-fill, minmax(190px, 1fr)); gap: 12px 20px; margin: 24px 0 0; }
dl.facts div { border-top: 1px solid var(--line); padding-top: 6px; }
dt { color: var(--soft); font-size: 13px; }
dd { margin: 0; font-size: 17px; font-weight: 600; overflow-wrap: anywhere; }
figure { margin: 0; break-inside: avoid; }
img { display: block; max-width: 100%; height: auto; }
.large img { width: auto; max-height: 720px; margin: 0 auto; }
.large { display: grid; gap: 20px; }
.grid { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(400px, 100%), 1fr)); gap: 20px; align-items: start; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th, td { text-align: right; padding: 5px 10px; border-bottom: 1px solid var(--line); white-space: nowrap; }
th { color: var(--soft); font-weight: 600; font-size: 13px; }
th:first-child, td:first-child { text-align: left; padding-left: 0; }
.settings { display: grid; grid-template-columns: repeat(auto-fit, minmax(320px, 1fr)); gap: 8px 40px; align-items: start; }
.settings h3 { font-size: 14px; margin: 8px 0 4px; }
.settings .wide { grid-column: 1 / -1; overflow-x: auto; }
.settings td + td { white-space: normal; overflow-wrap: anywhere; }
.components { font-size: 14px; }
.patch { display: inline-block; width: 12px; height: 12px; margin-right: 8px; border: 1px solid #0004; vertical-align: -1px;
         print-color-adjust: exact; -webkit-print-color-adjust: exact; }
pre { margin: 0; padding: 12px 16px; background: var(--ground); border: 1px solid var(--line); border-radius: 6px;
      font: 13px/1.5 "DejaVu Sans Mono", Consolas, Menlo, monospace; white-space: pre-wrap; overflow-wrap: anywhere; }
footer { margin-top: 32px; color: var(--soft); font-size: 13px; }
@media print {
  @page { margin: 15mm; }
  body { background: #fff; font-size: 10pt; }
  main { max-width: none; padding: 0; min-height: 0; }
  h2 { break-after: avoid; margin-top: 18pt; }
  .large img { max-height: 120mm; }
  .grid { grid-template-columns: repeat(2, 1fr); gap: 4mm; }
  .scroll { overflow: visible; }
  th, td { padding: 3px 6px; }
  tr, .settings section { break-inside: avoid; }
}
)";

} // namespace

QString htmlPageHead(const QString& strTitle, const QString& strStyle)
{
    return QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>") +
           strTitle.toHtmlEscaped() + QStringLiteral("</title>\n<style>") + QLatin1String(styleSheet) + strStyle +
           QStringLiteral("</style>\n</head>\n<body>\n<main>\n");
}

QString htmlPageFoot(const QString& strProgram)
{
    return QStringLiteral("<footer>") + strProgram.toHtmlEscaped() +
           QStringLiteral("</footer>\n</main>\n</body>\n</html>\n");
}
