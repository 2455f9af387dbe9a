#pragma once

#include <QByteArray>
#include <QString>
#include <exception>

namespace platform {

// A run-time error with the number and description that the user may be shown.
// Lower layers throw it; the screens and GenMod decide what the user sees.
class Error : public std::exception {
  public:
    Error(int number, QString description)
        : m_number(number), m_description(std::move(description)), m_what(m_description.toUtf8()) {}
    int number() const { return m_number; }
    const QString& description() const { return m_description; }
    const char* what() const noexcept override { return m_what.constData(); }

  private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

// Error numbers of the platform that the screens look at.
inline constexpr int ErrFileNotFound = 53;
inline constexpr int ErrOverflow = 6;
inline constexpr int ErrTypeMismatch = 13;
inline constexpr int ErrInvalidProcedureCall = 5;
inline constexpr int ErrPathNotFound = 76;
inline constexpr int ErrPermissionDenied = 70;
inline constexpr int ErrPathFileAccess = 75;

} // namespace platform
