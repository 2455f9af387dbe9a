#include "Office.h"

#include "Random.h"

#include "datastore/Schema.h"
#include "platform/Error.h"
#include "session/GenMod.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <cstdint>
#include <cstdio>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

namespace {

// Days since 1970-01-01 of a civil date, and back.
int daysFromCivil(int y, int m, int d) {
    y -= m <= 2;
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - era * 400;
    const int doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

struct Civil {
    int year, month, day;
};

Civil civilFromDays(int z) {
    z += 719468;
    const int era = (z >= 0 ? z : z - 146096) / 146097;
    const int doe = z - era * 146097;
    const int yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int mp = (5 * doy + 2) / 153;
    const int d = doy - (153 * mp + 2) / 5 + 1;
    const int m = mp + (mp < 10 ? 3 : -9);
    return {yoe + era * 400 + (m <= 2), m, d};
}

Civil parseIso(const char* text) {
    Civil c{};
    std::sscanf(text, "%d-%d-%d", &c.year, &c.month, &c.day);
    return c;
}

int daysOf(const char* iso) {
    const Civil c = parseIso(iso);
    return daysFromCivil(c.year, c.month, c.day);
}

std::string isoDate(int days) {
    const Civil c = civilFromDays(days);
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", c.year, c.month, c.day);
    return text;
}

std::string number(int value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*d", digits, value);
    return text;
}

// Length in characters of UTF-8 text.
int characters(const std::string& text) {
    int n = 0;
    for (unsigned char c : text)
        n += (c & 0xC0) != 0x80;
    return n;
}

// Cuts UTF-8 text to at most `limit` characters at a word boundary.
std::string cutToWords(const std::string& text, int limit) {
    if (characters(text) <= limit)
        return text;
    std::string out;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find(' ', start);
        if (end == std::string::npos)
            end = text.size();
        const std::string word = text.substr(start, end - start);
        const std::string longer = out.empty() ? word : out + ' ' + word;
        if (characters(longer) > limit)
            break;
        out = longer;
        start = end + 1;
    }
    return out;
}

const std::array<const char*, 8> DocTypes{"Invoice",   "Letter", "Contract", "Receipt",
                                          "Statement", "Report", "Memo",     "Certificate"};
// How often each type occurs, per thousand documents.
const std::array<int, 8> DocTypeShare{300, 200, 80, 120, 100, 60, 80, 60};
const std::array<const char*, 12> Categories{"Accounts",  "Banking",   "Insurance", "Legal",
                                             "Personnel", "Property",  "Tax",       "Vehicles",
                                             "Suppliers", "Customers", "Projects",  "Utilities"};
const std::array<const char*, 10> SubCategories{"Correspondence", "Payments", "Quotations", "Agreements",
                                                "Claims",         "Renewals", "Notices",    "Returns",
                                                "Statements",     "Orders"};
const std::array<const char*, 9> ChildCategories{"Originals", "Copies", "Signed", "Drafts", "Q1",
                                                 "Q2",        "Q3",     "Q4",     "Archive"};
const std::array<const char*, 20> Companies{
    "Northfield Supplies", "Harbour Logistics", "Greenway Energy",    "Castle Insurance",
    "Bright Office Ltd",   "Meridian Bank",     "Oakridge Builders",  "Summit Legal",
    "Riverside Motors",    "Apex Telecom",      "Blue Fern Catering", "Kestrel Accounts",
    "Ashford Print",       "Lakeside Water",    "Pioneer Freight",    "Silverline Travel",
    "Crown Stationers",    "Westgate Property", "Evergreen Cleaning", "Redwood IT"};
// Names with letters beyond ASCII: about one title in twenty carries one.
const std::array<const char*, 10> ForeignNames{
    "Müller & Söhne",  "Zürich Re",      "São Paulo Trading",  "Łódź Textiles",    "Ærø Ferries",
    "Ελλάδα Shipping", "Добрый Day Ltd", "Café Müller Zürich", "Łódź Ærø Freight", "São Paulo Ελλάδα"};
const std::array<const char*, 10> People{"J. Patel",   "M. Okafor", "S. Lindqvist", "A. Rossi", "K. Tanaka",
                                         "L. Fischer", "R. Moreau", "D. O'Brien",   "P. Nowak", "T. Adeyemi"};
const std::array<const char*, 12> Months{"January",   "February", "March",    "April",
                                         "May",       "June",     "July",     "August",
                                         "September", "October",  "November", "December"};
const std::array<const char*, 12> Subjects{
    "office lease renewal", "annual maintenance", "late payment",      "staff training",
    "vehicle service",      "water damage claim", "tax assessment",    "price revision",
    "audit queries",        "server upgrade",     "fire safety check", "new supplier terms"};
const std::array<const char*, 8> FileParts{"originals", "H1",     "H2",  "copies",
                                           "current",   "closed", "A-L", "M-Z"};
const std::array<const char*, 8> Remarks{"Paid by bank transfer",      "Original with the accountant",
                                         "Awaiting signature",         "Copy sent to head office",
                                         "Check again before renewal", "Scanned twice, see page 2",
                                         "Disputed, see letter",       "Filed late"};
const std::array<const char*, 8> RemarkSentences{
    "The original was handed to the auditors in the spring and came back with notes in the margin.",
    "Two pages were missing from the first scan, so the whole document was scanned again.",
    "The supplier agreed to a revised price after the meeting, confirmed by telephone.",
    "Keep this together with the earlier correspondence until the matter is closed.",
    "A copy went to the branch office; the signed original stays in the hard-copy file.",
    "Payment was split into three instalments, the last one due at the end of the quarter.",
    "The insurer asked for photographs, which are attached at the back of the file.",
    "Reminder set for the follow-up date; call the contact person before then."};

struct Extension {
    const char* text;
    int share; // per thousand
};
const std::array<Extension, 6> Extensions{
    {{"pdf", 450}, {"PDF", 150}, {"jpg", 120}, {"JPG", 80}, {"docx", 120}, {"xlsx", 80}}};

struct SubCategory {
    int id;
    std::vector<int> children; // ChildCatIDs
};

struct Tree {
    std::vector<std::vector<SubCategory>> categories; // by CatID - 1
};

struct HardCopyFiles {
    std::vector<int> firstOfYear; // FileID of the first file of each year, plus one past the last
    int firstYear = 0;
};

class Database {
  public:
    explicit Database(const QString& path) {
        if (sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db, SQLITE_OPEN_READWRITE, nullptr) !=
            SQLITE_OK)
            fail("cannot open " + path.toStdString());
    }
    ~Database() {
        for (sqlite3_stmt* s : m_statements)
            sqlite3_finalize(s);
        sqlite3_close(m_db);
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void exec(const std::string& sql) {
        char* message = nullptr;
        if (sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
            const std::string text = message ? message : "unknown error";
            sqlite3_free(message);
            fail(sql + ": " + text);
        }
    }
    sqlite3_stmt* prepare(const std::string& sql) {
        sqlite3_stmt* s = nullptr;
        if (sqlite3_prepare_v2(m_db, sql.c_str(), -1, &s, nullptr) != SQLITE_OK)
            fail(sql);
        m_statements.push_back(s);
        return s;
    }
    // Runs a prepared insert whose values are bound, and makes it ready for the next row.
    void step(sqlite3_stmt* s) {
        if (sqlite3_step(s) != SQLITE_DONE)
            fail(sqlite3_sql(s));
        sqlite3_reset(s);
    }
    std::vector<std::string> column(const std::string& sql) {
        std::vector<std::string> out;
        sqlite3_stmt* s = prepare(sql);
        while (sqlite3_step(s) == SQLITE_ROW)
            out.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(s, 0)));
        return out;
    }
    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(what + " (" + sqlite3_errmsg(m_db) + ")");
    }

  private:
    sqlite3* m_db = nullptr;
    std::vector<sqlite3_stmt*> m_statements;
};

void bindText(sqlite3_stmt* s, int column, const std::string& text) {
    sqlite3_bind_text(s, column, text.data(), int(text.size()), SQLITE_TRANSIENT);
}

Tree insertClassification(Database& db, Random& random) {
    sqlite3_stmt* type = db.prepare("insert into DocumentType values(?, ?, 1)");
    for (int i = 0; i < int(DocTypes.size()); ++i) {
        sqlite3_bind_int(type, 1, i + 1);
        bindText(type, 2, DocTypes[i]);
        db.step(type);
    }
    sqlite3_stmt* category = db.prepare("insert into DocumentCategory values(?, ?, 1)");
    sqlite3_stmt* sub = db.prepare("insert into DocumentSubCategory values(?, ?, ?, 1)");
    sqlite3_stmt* child = db.prepare("insert into DocumentChildCategory values(?, ?, ?, ?, 1)");
    Tree tree;
    int subID = 0;
    int childID = 0;
    for (int c = 0; c < int(Categories.size()); ++c) {
        const int catID = c + 1;
        sqlite3_bind_int(category, 1, catID);
        bindText(category, 2, Categories[c]);
        db.step(category);
        tree.categories.emplace_back();
        // Distinct names within a category: consecutive ones from a random start.
        const int subs = random.between(3, 6);
        const int subStart = random.below(int(SubCategories.size()));
        for (int s = 0; s < subs; ++s) {
            SubCategory node{++subID, {}};
            sqlite3_bind_int(sub, 1, node.id);
            sqlite3_bind_int(sub, 2, catID);
            bindText(sub, 3, SubCategories[(subStart + s) % SubCategories.size()]);
            db.step(sub);
            const int children = random.between(2, 5);
            const int childStart = random.below(int(ChildCategories.size()));
            for (int k = 0; k < children; ++k) {
                node.children.push_back(++childID);
                sqlite3_bind_int(child, 1, childID);
                sqlite3_bind_int(child, 2, catID);
                sqlite3_bind_int(child, 3, node.id);
                bindText(child, 4, ChildCategories[(childStart + k) % ChildCategories.size()]);
                db.step(child);
            }
            tree.categories.back().push_back(std::move(node));
        }
    }
    return tree;
}

// About two thousand paper files, numbered by year ("F-2011/0345").
HardCopyFiles insertFiles(Database& db, Random& random) {
    constexpr int Files = 2000;
    const int firstYear = parseIso(FirstDocDate).year;
    const int years = parseIso(LastDocDate).year - firstYear + 1;
    sqlite3_stmt* file = db.prepare("insert into File values(?, ?, ?, 1)");
    HardCopyFiles out;
    out.firstYear = firstYear;
    int seq = 0;
    int year = -1;
    for (int i = 0; i < Files; ++i) {
        const int y = i * years / Files;
        if (y != year) {
            year = y;
            seq = 0;
            out.firstOfYear.push_back(i + 1);
        }
        ++seq;
        sqlite3_bind_int(file, 1, i + 1);
        bindText(file, 2, "F-" + std::to_string(firstYear + y) + "/" + number(seq, 4));
        bindText(file, 3, std::string(random.pick(Categories)) + " " + random.pick(FileParts));
        db.step(file);
    }
    out.firstOfYear.push_back(Files + 1);
    return out;
}

std::string company(Random& random, bool foreign) {
    return foreign ? random.pick(ForeignNames) : random.pick(Companies);
}

std::string title1(Random& random, int type, const Civil& date, bool foreign) {
    const std::string month = Months[date.month - 1];
    const std::string year = std::to_string(date.year);
    std::string t;
    switch (type) {
    case 1:
        t = "Invoice " + std::to_string(random.between(1000, 9999)) + " from " + company(random, foreign) +
            " for " + month;
        break;
    case 2:
        t = random.below(2)
                ? "Letter from " + company(random, foreign) + " about " + random.pick(Subjects)
                : "Letter to " + std::string(random.pick(People)) + " regarding " + random.pick(Subjects);
        if (foreign && t.find("Letter to") == 0)
            t += " " + company(random, true);
        break;
    case 3:
        t = "Contract " + number(random.between(1, 999), 3) + "/" + year + " with " +
            company(random, foreign);
        break;
    case 4:
        t = "Receipt " + std::to_string(random.between(10000, 99999)) + " " + company(random, foreign) + " " +
            month + " " + year;
        break;
    case 5:
        t = month + " " + year + " statement " + number(random.between(1, 999999), 6) + " from " +
            company(random, foreign);
        break;
    case 6:
        t = "Report on " + std::string(random.pick(Subjects)) + " by " + random.pick(People) +
            (foreign ? " for " + company(random, true) : ", " + month + " " + year);
        break;
    case 7:
        t = "Memo " + number(random.between(1, 999), 3) + " to all staff about " + random.pick(Subjects);
        if (foreign)
            t += " " + company(random, true);
        break;
    default:
        t = "Certificate " + std::to_string(random.between(100, 9999)) + " for " + random.pick(Subjects) +
            " by " + company(random, foreign);
        break;
    }
    if (characters(t) < 25)
        t += " " + month + " " + year;
    return cutToWords(t, 70);
}

std::string title2(Random& random, int fileID) {
    switch (random.below(6)) {
    case 0:
    case 1:
        return {};
    case 2:
        return "Ref " + number(random.between(1, 999999), 6);
    case 3:
        return "Copy to " + std::string(random.pick(People));
    case 4:
        return "Account " + number(random.between(1, 99999999), 8);
    default:
        return "Kept in file " + std::to_string(fileID);
    }
}

std::string slug(const std::string& title) {
    std::string out;
    for (unsigned char c : title) {
        if (c >= 'A' && c <= 'Z')
            out += char(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            out += char(c);
        else if (!out.empty() && out.back() != '-')
            out += '-';
        if (out.size() >= 24)
            break;
    }
    while (!out.empty() && out.back() == '-')
        out.pop_back();
    return out;
}

std::string extension(Random& random) {
    int roll = random.below(1000);
    for (const Extension& e : Extensions) {
        if (roll < e.share)
            return e.text;
        roll -= e.share;
    }
    return Extensions[0].text;
}

std::string bookmark(Random& random) {
    switch (random.below(10)) {
    case 0:
    case 1:
    case 2:
        return {};
    case 3:
    case 4:
    case 5:
    case 6:
        return "Page " + std::to_string(random.between(1, 40));
    case 7:
    case 8:
        return "Tab " + std::to_string(random.between(1, 12));
    default:
        return std::string("Section ") + char('A' + random.below(6));
    }
}

std::string remarks(Random& random) {
    const int roll = random.below(1000);
    if (roll < 20) { // a long note, a few hundred characters
        std::string out;
        const int sentences = random.between(3, 5);
        for (int i = 0; i < sentences; ++i)
            out += (out.empty() ? "" : " ") + std::string(random.pick(RemarkSentences));
        return out;
    }
    if (roll < 450)
        return random.pick(Remarks);
    return {};
}

int documentType(Random& random) {
    int roll = random.below(1000);
    for (int i = 0; i < int(DocTypeShare.size()); ++i) {
        if (roll < DocTypeShare[i])
            return i + 1;
        roll -= DocTypeShare[i];
    }
    return 1;
}

// The sentences of the soft copies' texts. In each, {C} is a company, {P} a person, {S} a
// subject, {M} a month, {Y} a year, {A} an amount and {N} a number.
const std::array<const char*, 36> TextSentences{
    "Thank you for your letter of {M} concerning the {S}.",
    "We enclose our invoice number {N} for the work carried out in {M} {Y}.",
    "The total amount due is {A}, payable within thirty days of the date of this letter.",
    "Please quote the reference {N} on all correspondence and payments.",
    "Our records show that the balance of {A} remains outstanding.",
    "If you have already made this payment, please disregard this reminder.",
    "We would be grateful if you could confirm the arrangements for the {S} by the end of {M}.",
    "The agreement with {C} runs for a further twelve months from the first of {M}.",
    "Any change to the terms must be agreed in writing by both parties.",
    "{P} will visit your office to discuss the {S} and answer any questions.",
    "The attached schedule lists the items delivered and the prices agreed.",
    "Goods remain the property of {C} until paid for in full.",
    "We regret to inform you that the delivery planned for {M} has been delayed.",
    "A credit note for {A} has been issued against invoice {N}.",
    "The premium for the coming year has been set at {A}, an increase on last year.",
    "Please check the details below and tell us at once if anything is incorrect.",
    "The inspection found no defects that need attention before the next review.",
    "Copies of this letter have been sent to {P} and to the accounts department.",
    "The meeting on the {S} will take place at our offices in {M}.",
    "We have received your claim and will reply within fourteen working days.",
    "The account number {N} should be used for all transfers to {C}.",
    "Interest will be charged on late payments at the rate stated in the contract.",
    "This statement covers all transactions between the first and the last day of {M}.",
    "The signed copy should be returned to {P} in the envelope provided.",
    "Following our conversation, we confirm the revised price of {A}.",
    "The certificate remains valid for two years from the date of issue.",
    "Our engineer will call to carry out the {S} on a date to be agreed.",
    "Please keep this document in a safe place; it may be needed for your tax return.",
    "The report on the {S} was presented to the board in {M} {Y}.",
    "Receipt is hereby acknowledged of the sum of {A} from {C}.",
    "We apologise for any inconvenience this may have caused.",
    "The new terms apply to all orders placed after the end of {M}.",
    "Should you wish to discuss this matter further, please contact {P} directly.",
    "The figures for {Y} show a small rise in costs compared with the year before.",
    "Payment was received in full on the date shown and the account is now closed.",
    "Delivery will be made to the address given on your order number {N}."};
const std::array<const char*, 12> Streets{"Station Road", "High Street",   "Mill Lane",     "Church Street",
                                          "Park Avenue",  "Victoria Road", "Market Square", "Queen Street",
                                          "Bridge Road",  "King's Parade", "Harbour Walk",  "Orchard Close"};
const std::array<const char*, 12> Towns{"Ashbury",     "Bramford",  "Carlton",  "Dunmore",
                                        "Eastleigh",   "Fairhaven", "Glenwood", "Hartfield",
                                        "Kingsbridge", "Longford",  "Milbrook", "Northgate"};
const std::array<const char*, 6> Roles{"Accounts Manager",  "Office Manager", "Director",
                                       "Customer Services", "Claims Handler", "Sales Manager"};

std::string amount(Random& random) {
    return "EUR " + std::to_string(random.between(12, 48000)) + "." + number(random.below(100), 2);
}

std::string fillSentence(Random& random, const char* sentence, const Civil& date) {
    std::string out;
    for (const char* c = sentence; *c; ++c) {
        if (*c != '{' || !c[1] || c[2] != '}') {
            out += *c;
            continue;
        }
        switch (c[1]) {
        case 'C':
            out += random.pick(Companies);
            break;
        case 'P':
            out += random.pick(People);
            break;
        case 'S':
            out += random.pick(Subjects);
            break;
        case 'M':
            out += random.pick(Months);
            break;
        case 'Y':
            out += std::to_string(date.year - random.below(2));
            break;
        case 'A':
            out += amount(random);
            break;
        default:
            out += std::to_string(random.between(10000, 999999));
            break;
        }
        c += 2;
    }
    return out;
}

// The text of a document's soft copy: a letter of about a thousand characters from its sender,
// with the rare words of its key.
std::string softText(int id, const Civil& date, const std::string& title) {
    Random random(0x536f667454657874ULL + std::uint64_t(id));
    const std::string sender = random.pick(Companies);
    std::string text = sender + "\n" + std::to_string(random.between(1, 240)) + " " + random.pick(Streets) +
                       ", " + random.pick(Towns) + "\n\n" + std::to_string(date.day) + " " +
                       Months[date.month - 1] + " " + std::to_string(date.year) + "\n\n" + title +
                       "\n\nDear " + random.pick(People) + ",\n\n";
    std::string planted;
    for (const RareWord& rare : RareWords)
        if (id % rare.every == rare.offset)
            planted += std::string(" For the details, please ask Mr. ") + rare.word + " at the head office.";
    const std::size_t middle = text.size() + 300;
    while (text.size() < 860) {
        if (!planted.empty() && text.size() > middle)
            text += std::exchange(planted, std::string()).substr(1) + " ";
        text += fillSentence(random, random.pick(TextSentences), date);
        text += random.below(4) ? " " : "\n\n";
    }
    while (text.back() == ' ' || text.back() == '\n')
        text.pop_back();
    return text + "\n\nYours sincerely,\n" + random.pick(People) + "\n" + random.pick(Roles) + ", " + sender +
           "\n";
}

// The documents in the order they were entered: IndexID grows with the day of entry, but a
// document carries its own date, mostly a few weeks before entry and sometimes years.
void insertDocuments(Database& db, Random& random, int documents, const Tree& tree,
                     const HardCopyFiles& files) {
    sqlite3_stmt* row = db.prepare("insert into Vorlane values(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 1)");
    // Every soft copy has been read, as the file was a while after the document was entered.
    sqlite3_stmt* soft = db.prepare("insert into SoftCopy(IndexID, DocDate, ReadPath, FileSize, FileTime, "
                                    "ReadState, SoftText) values(?, ?, ?, ?, ?, 'read', ?)");
    const int first = daysOf(FirstDocDate);
    const int span = daysOf(LastDocDate) - first;
    for (int id = 1; id <= documents; ++id) {
        const int entered = int(std::int64_t(span) * id / documents);
        const int back = random.perMille(800) ? random.between(0, 45) : random.between(0, entered);
        const int day = first + std::max(0, entered - back);
        const Civil date = civilFromDays(day);
        const int type = documentType(random);
        const int cat = random.below(int(tree.categories.size()));
        const auto& subs = tree.categories[cat];
        const SubCategory& sub = subs[random.below(int(subs.size()))];
        const int child = sub.children[random.below(int(sub.children.size()))];
        const int year = date.year - files.firstYear;
        const int fileID =
            files.firstOfYear[year] + random.below(files.firstOfYear[year + 1] - files.firstOfYear[year]);
        const std::string t1 = title1(random, type, date, random.perMille(50));
        const std::string path = "/home/office/Scans/" + std::to_string(date.year) + "/" +
                                 number(date.month, 2) + "/" + slug(t1) + "." + extension(random);

        sqlite3_bind_int(row, 1, id);
        const std::string docDate = isoDate(day);
        const std::string followup = isoDate(day + random.between(0, 90));
        bindText(row, 2, docDate);
        bindText(row, 3, followup);
        sqlite3_bind_int(row, 4, type);
        sqlite3_bind_int(row, 5, cat + 1);
        sqlite3_bind_int(row, 6, sub.id);
        sqlite3_bind_int(row, 7, child);
        bindText(row, 8, t1);
        const std::string t2 = title2(random, fileID);
        bindText(row, 9, t2);
        bindText(row, 10, path);
        sqlite3_bind_int(row, 11, fileID);
        const std::string mark = bookmark(random);
        bindText(row, 12, mark);
        const std::string note = remarks(random);
        bindText(row, 13, note);
        db.step(row);

        sqlite3_bind_int(soft, 1, id);
        bindText(soft, 2, docDate);
        bindText(soft, 3, path);
        bindText(soft, 4, std::to_string(random.between(20000, 900000)));
        bindText(soft, 5,
                 isoDate(first + entered + 1) + "T" + number(random.between(7, 18), 2) + ":" +
                     number(random.below(60), 2) + ":" + number(random.below(60), 2) + ".000");
        bindText(soft, 6, softText(id, date, t1));
        db.step(soft);
    }
}

const QString StampName = QStringLiteral("generator.txt");

QByteArray stamp(int documents) {
    return QByteArrayLiteral("version ") + QByteArray::number(GeneratorVersion) +
           QByteArrayLiteral("\ndocuments ") + QByteArray::number(documents) + '\n';
}

} // namespace

void generateDatabase(const QString& path, int documents) {
    try {
        db::createDatabase(path, GenMod::ScrambleText(QStringLiteral("admin")),
                           GenMod::ScrambleText(QStringLiteral("admin")));
    } catch (const platform::Error& e) {
        throw std::runtime_error(e.description().toStdString());
    }
    Database db(path);
    // Nothing to recover if the run breaks off: the file is thrown away then.
    db.exec("PRAGMA journal_mode=OFF");
    db.exec("PRAGMA synchronous=OFF");
    db.exec("PRAGMA cache_size=-262144");
    // The indexes of the documents and of their soft copies are built once after the rows, as the
    // schema defines them; so are the contains-search indexes, whose triggers would otherwise add
    // each row to them.
    const std::string tables = "tbl_name in ('Vorlane', 'SoftCopy') and sql is not null";
    const std::vector<std::string> indexes =
        db.column("select sql from sqlite_master where type='index' and " + tables);
    const std::vector<std::string> triggers =
        db.column("select sql from sqlite_master where type='trigger' and " + tables);
    for (const std::string& name :
         db.column("select name from sqlite_master where type='index' and " + tables))
        db.exec("drop index \"" + name + "\"");
    for (const std::string& name :
         db.column("select name from sqlite_master where type='trigger' and " + tables))
        db.exec("drop trigger \"" + name + "\"");

    Random random(0x566f726c616e65ULL + std::uint64_t(documents));
    db.exec("BEGIN");
    const Tree tree = insertClassification(db, random);
    const HardCopyFiles files = insertFiles(db, random);
    insertDocuments(db, random, documents, tree, files);
    db.exec("COMMIT");
    for (const std::string& sql : indexes)
        db.exec(sql);
    db.exec("insert into VorlaneText(VorlaneText) values('rebuild')");
    db.exec("insert into SoftCopyText(SoftCopyText) values('rebuild')");
    for (const std::string& sql : triggers)
        db.exec(sql);
}

std::string letterText(int number) {
    // Odd keys: none of them holds a rare word.
    const int id = 2 * number + 1;
    return softText(id, civilFromDays(daysOf(FirstDocDate) + id % 7000), "Letter " + std::to_string(number));
}

void pointNewestAt(const QString& database, const QStringList& paths) {
    Database db(database);
    db.exec("BEGIN");
    const std::vector<std::string> keys =
        db.column("select IndexID from Vorlane order by DocDate desc, IndexID desc limit " +
                  std::to_string(paths.size()));
    sqlite3_stmt* update = db.prepare("update Vorlane set FilePath = ? where IndexID = ?");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        bindText(update, 1, paths[int(i)].toStdString());
        sqlite3_bind_int64(update, 2, std::stoll(keys[i]));
        db.step(update);
    }
    db.exec("COMMIT");
}

QString officeFolder(const QString& dataFolder, int documents) {
    return QDir(dataFolder).filePath(QStringLiteral("office-%1").arg(documents));
}

bool officeIsCurrent(const QString& dataFolder, int documents) {
    const QDir office(officeFolder(dataFolder, documents));
    QFile file(office.filePath(StampName));
    return QFileInfo::exists(office.filePath(QStringLiteral("Database/Vorlane.mdb"))) &&
           file.open(QIODevice::ReadOnly) && file.readAll() == stamp(documents);
}

void makeOffice(const QString& dataFolder, int documents) {
    const QString folder = officeFolder(dataFolder, documents);
    const QString building = folder + QStringLiteral(".partial");
    QDir(building).removeRecursively();
    if (!QDir().mkpath(building + QStringLiteral("/Database")))
        throw std::runtime_error("cannot create " + building.toStdString());
    generateDatabase(building + QStringLiteral("/Database/Vorlane.mdb"), documents);
    QFile file(QDir(building).filePath(StampName));
    if (!file.open(QIODevice::WriteOnly) || file.write(stamp(documents)) < 0)
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    file.close();
    QDir(folder).removeRecursively();
    if (!QDir().rename(building, folder))
        throw std::runtime_error("cannot rename " + building.toStdString());
}

} // namespace bench
