#include "ReportSamples.h"

namespace testsupport::samples {

using reports::MemoryData;

MemoryData searchRows() {
    MemoryData d;
    for (int i = 1; i <= 40; ++i)
        d.addRow(
            {{"Title1", QString::number(1000 + i)},
             {"Title2", i == 3 ? "Agreement for the lease of the ground floor office with parking, signed by "
                                 "both parties and witnessed"
                               : QStringLiteral("Invoice %1 from Northwind Supplies").arg(4400 + i)},
             {"DocDate", QStringLiteral("Order %1").arg(700 + i)},
             {"FollowupDate", QStringLiteral("%1/Mar/2024").arg(i % 28 + 1, 2, 10, QLatin1Char('0'))},
             {"Bookmark", QStringLiteral("%1/Apr/2024").arg(i % 28 + 1, 2, 10, QLatin1Char('0'))},
             {"Remarks", i % 5 == 0 ? "Second drawer, red folder behind the tax papers" : "Tab 3"},
             {"FileNumber", i % 4 == 0 ? "Paid in full" : ""},
             {"FilePath", QStringLiteral("F-%1").arg(i % 9 + 1, 3, 10, QLatin1Char('0'))}});
    return d;
}

const QString kFirm = QStringLiteral("Okonkwo-Lindqvist Halvorsen & Partners Consultants");
const QString kMail = QStringLiteral("margareta.okonkwo-lindqvist@halvorsen.no");
const QStringList kAddress = {QStringLiteral("Unit 7, 2nd Floor, Harbour Business Park"),
                              QStringLiteral("Harbourside Commercial Park, Block C-14A"),
                              QStringLiteral("Port Ellis 4410, Greater Kingsbridge, UK")};
const QString kPhone = QStringLiteral("+44 (0)20 7946 0018");
const QString kLink = QStringLiteral("https://docs.example.com/document/d/"
                                     "1AbCdEfGhIjKlMnOpQrStUvWxYz0123456789aBcDeFgHiJkLmNoPqRsTuVwXyZ9876/"
                                     "edit?usp=sharing");

const QList<std::pair<QString, QString>> kPersonal = {{"FullName", kFirm},
                                                      {"Add1", kAddress[0]},
                                                      {"Add2", kAddress[1]},
                                                      {"Add3", kAddress[2]},
                                                      {"Phone", kPhone},
                                                      {"Cell", "+44 (0)7700 900 123"},
                                                      {"Fax", "+44 (0)20 7946 0019"},
                                                      {"Email", kMail}};

MemoryData personalInFull() {
    QHash<QString, QString> row{{"ID", "1"}};
    for (const auto& [field, value] : kPersonal)
        row.insert(field, value);
    MemoryData d;
    d.addRow(row);
    return d;
}

const QString kRemark =
    QStringLiteral("Auditor. Call before the 10th of each month; sends the quarterly review by "
                   "post and expects the signed copy back within a week.");

MemoryData contactsInFull() {
    MemoryData d;
    for (int i = 1; i <= 20; ++i)
        d.addRow({{"FullName", QStringLiteral("Contact %1").arg(i)},
                  {"Add1", QStringLiteral("%1 Main Street").arg(i * 3)},
                  {"Phone", QStringLiteral("555-01%1").arg(i, 2, 10, QLatin1Char('0'))}});
    QHash<QString, QString> last{{"Remarks", kRemark}};
    for (const auto& [field, value] : kPersonal)
        last.insert(field, value);
    last.insert("FullName", "Margareta Okonkwo-Lindqvist");
    d.addRow(last);
    return d;
}

MemoryData referencesInFull() {
    MemoryData d;
    d.addRow({{"RefName", "Budget of the building project"},
              {"Particulars", "The shared sheet"},
              {"OnlineLink", kLink}});
    d.addRow({{"RefName", "Tax office"},
              {"Particulars", "Online returns and payment of advance tax"},
              {"OnlineLink", "https://tax.example.gov/e-filing"}});
    return d;
}

QString queryOfAllCriteria() {
    QStringList parts;
    for (const char* caption : {"Doc. Type", "Doc. Category", "Doc. Sub-Category", "Doc. Child Category",
                                "Doc. Title 1", "Doc. Title 2", "Bookmark", "Remarks"})
        parts << QString::fromLatin1(caption) + " : Correspondence with suppliers and agents";
    parts << "Document date between : 01-Jan-2024 and 31-Mar-2024"
          << "Follow-up date between : 01-Jan-2024 and 31-Mar-2024"
          << "File Number : ARCHIVE/2019/LONG-NUMBER-25/BOX-14/SHELF";
    return parts.join(' ');
}

} // namespace testsupport::samples
