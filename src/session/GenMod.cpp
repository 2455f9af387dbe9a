#include "GenMod.h"

#include "Form.h"
#include "Session.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/MousePointer.h"
#include "platform/MsgBox.h"

#include <QMdiArea>
#include <array>
#include <string>

namespace GenMod {

using platform::MsgBox;

namespace {

void showCritical(const platform::Error& e) {
    MsgBox(e.description(), platform::vbCritical);
}

// Opens "Select <fields> from <source>" on Conn with the provider's default cursor.
std::unique_ptr<db::Recordset> openDefault(const QString& fields, const QString& source) {
    auto rs = std::make_unique<db::Recordset>();
    rs->Open(QStringLiteral("Select ") + fields + QStringLiteral(" from ") + source, Conn,
             db::adOpenUnspecified, db::adLockUnspecified, -1);
    return rs;
}

// Windows-1252 bytes 0x80-0x9F; the five bytes that the code page leaves undefined map to
// the control characters of the same number, as Windows converts them.
constexpr std::array<char16_t, 32> cp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The Windows-1252 byte of a character, or -1 for a character outside that code page.
int toCp1252(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return static_cast<int>(c);
    for (int i = 0; i < 32; ++i)
        if (cp1252High[i] == c)
            return 0x80 + i;
    return -1;
}

char16_t fromCp1252(int byte) {
    if (byte >= 0x80 && byte <= 0x9F)
        return cp1252High[byte - 0x80];
    return static_cast<char16_t>(byte);
}

// A character outside Windows-1252 trades places with one that no scrambled Windows-1252 text
// holds: a character of the Basic Multilingual Plane with its complement in the private use
// plane 15, any other with its complement within its own plane. Complements keep the names'
// order reversed, as the code page's do. The few characters of plane 15 whose partner would be a
// character of the code page, or half of a surrogate pair, stand for themselves.
char32_t scrambleOutside(char32_t c) {
    constexpr char32_t Plane15 = 0xF0000;
    if (c < 0x10000)
        return Plane15 + (0xFFFF - c);
    if ((c & ~char32_t(0xFFFF)) == Plane15) {
        const char32_t partner = 0xFFFF - (c - Plane15);
        const bool surrogate = partner >= 0xD800 && partner <= 0xDFFF;
        return surrogate || toCp1252(partner) >= 0 ? c : partner;
    }
    return c ^ 0xFFFF;
}

template <class Target, class Transform>
void fill(const QString& fields, const QString& source, Target* target, Transform displayText) {
    target->Clear();
    try {
        auto rs = openDefault(fields, source);
        while (!rs->eof()) {
            const int index = target->AddItem(displayText(platform::TrimStr(rs->Fields(1))));
            target->setItemData(target->NewIndex(), platform::CLng(rs->Fields(0)));
            Q_UNUSED(index);
            rs->MoveNext();
        }
        rs->Close();
    } catch (const platform::Error& e) {
        showCritical(e);
    }
}

} // namespace

bool OpenConnection() {
    platform::setMousePointer(platform::vbHourglass);
    try {
        Conn = std::make_shared<db::Connection>();
        Conn->CommandTimeout = 100;
        Conn->Open(DataSourceName, DataSourceUser, DataSourcePassword, -1);
        platform::setMousePointer(platform::vbDefault);
        return true;
    } catch (const platform::Error& e) {
        platform::setMousePointer(platform::vbDefault);
        if (e.number() == db::ErrLoginFailed)
            MsgBox(QStringLiteral("Incorrect User Name or Password."), platform::vbExclamation);
        else
            MsgBox(QStringLiteral("Database not found !\nPlease check your ODBC Datasource Configuration."),
                   platform::vbExclamation);
        return false;
    }
}

void CloseConnection() {
    Conn.reset();
}

void AbandonConnection(bool inTransaction) {
    if (inTransaction && Conn) {
        try {
            Conn->RollbackTrans();
        } catch (const platform::Error&) {
            // the release below discards the transaction anyway
        }
    }
    CloseConnection();
}

QString ReadUserRights(const QString& statement) {
    QString rights;
    try {
        db::Recordset rs;
        rs.Open(statement, Conn, db::adOpenStatic, db::adLockReadOnly, -1);
        if (!rs.eof()) {
            if (platform::CDbl(rs.Fields(QStringLiteral("View"))) == 1)
                rights = QStringLiteral("User");
            else if (platform::CDbl(rs.Fields(QStringLiteral("Save"))) == 1)
                rights = QStringLiteral("Save");
            else if (platform::CDbl(rs.Fields(QStringLiteral("Modify"))) == 1)
                rights = QStringLiteral("Modify");
            Session::CurrentUserID = platform::CInt(rs.Fields(QStringLiteral("UserID")));
        }
        rs.Close();
    } catch (const platform::Error& e) {
        showCritical(e);
        return QString(); // the default, even when a column was read before the error
    }
    return rights;
}

void CenterForm(QWidget* form) {
    QMdiArea* area = Form::mdiArea();
    if (!area || !form)
        return;
    QWidget* frame = form->parentWidget() ? form->parentWidget() : form; // the child window's frame
    const float left = area->viewport()->width() / 2.0f - frame->width() / 2.0f;
    const float top = area->viewport()->height() / 2.0f - frame->height() / 2.0f;
    frame->move(static_cast<int>(left), static_cast<int>(top));
}

QString FixQuotes(const QString& value) {
    if (!value.contains(QLatin1Char('\'')))
        return value;
    QString fixed = value;
    fixed.replace(QLatin1Char('\''), QLatin1Char('`'));
    return fixed;
}

QString GetFieldValue(const QString& fields, const QString& source) {
    try {
        auto rs = openDefault(fields, source);
        QString result;
        if (!(rs->bof() && rs->eof())) {
            const QVariant value = rs->Fields(0);
            result = platform::IsNull(value) ? QStringLiteral("0") : platform::CStr(value);
        }
        rs->Close();
        return result;
    } catch (const platform::Error& e) {
        showCritical(e);
        return QString();
    }
}

bool RecordExists(const QString& fields, const QString& source) {
    try {
        auto rs = openDefault(fields, source);
        const bool exists = !(rs->bof() && rs->eof());
        rs->Close();
        return exists;
    } catch (const platform::Error& e) {
        showCritical(e);
        return false;
    }
}

void FillCombo(const QString& fields, const QString& source, platform::ComboBox* target) {
    fill(fields, source, target, [](const QString& s) { return s; });
}

void FillList(const QString& fields, const QString& source, platform::ListBox* target) {
    fill(fields, source, target, [](const QString& s) { return s; });
}

void FillUserList(const QString& fields, const QString& source, platform::ListBox* target) {
    fill(fields, source, target, [](const QString& s) { return ScrambleText(s); });
}

qint32 FindItemIndex(const QString& value, platform::ComboBox* target) {
    try {
        target->setListIndex(0);
        const double wanted = platform::CDbl(value);
        for (int i = 0; i < target->ListCount(); ++i)
            if (static_cast<double>(target->ItemData(i)) == wanted)
                return i;
        return -1;
    } catch (const platform::Error& e) {
        showCritical(e);
        return -1;
    }
}

qint32 NextID(const QString& field, const QString& table) {
    try {
        const double highest =
            platform::Val(GetFieldValue(QStringLiteral("Max(") + field + QLatin1Char(')'), table));
        const qint32 number = platform::CLng(highest);
        if (number == 0)
            return 1;
        if (number == std::numeric_limits<qint32>::max())
            throw platform::Error(platform::ErrOverflow, QStringLiteral("Overflow"));
        return number + 1;
    } catch (const platform::Error& e) {
        showCritical(e);
        return 0;
    }
}

QString ScrambleText(const QString& text) {
    std::u32string result;
    result.reserve(size_t(text.size()));
    for (const char32_t c : text.toUcs4()) {
        const int byte = toCp1252(c);
        result += byte >= 0 ? char32_t(fromCp1252(255 - byte)) : scrambleOutside(c);
    }
    return QString::fromUcs4(result.data(), qsizetype(result.size()));
}

} // namespace GenMod
