// Numbers from texts and values, and back.
#pragma once

#include "platform/basic/Variant.h"
#include <QString>

class QLocale;

namespace basic {

/// The number at the start of a text, 0 when there is none. Blanks, tabs and line feeds are skipped
/// wherever they stand, the decimal sign is the point alone, an exponent begins with e or d, and &H and
/// &O introduce hexadecimal and octal whole numbers (16 and 32 bits wide, so &HFFFF is -1).
/// Raises 6 (Overflow) above the range of a double.
double val(QStringView text);

/// Whether the whole text is one number as the locale writes it: surrounding blanks, a sign before or
/// behind or parentheses, the currency sign, grouping signs, the decimal sign, an exponent; or &H and &O.
bool isNumeric(const QString& text);
bool isNumeric(const QString& text, const QLocale& locale);
/// True for numbers, booleans, Empty and numeric text; false for Null, dates and binary.
bool isNumeric(const Variant& value);

/// The number that isNumeric() accepts. Raises 13 (Type mismatch) for any other text, 6 (Overflow), and
/// 94 (Invalid use of Null).
double toDouble(const QString& text);
double toDouble(const QString& text, const QLocale& locale);
double toDouble(const Variant& value);

/// Whole numbers: halves go to the even neighbour. Raise 6 outside the range, 13 and 94 as toDouble().
qint16 toInt16(double value);
qint16 toInt16(const QString& text);
qint16 toInt16(const Variant& value);
qint32 toInt32(double value);
qint32 toInt32(const QString& text);
qint32 toInt32(const Variant& value);

/// The number as concatenation with "" writes it: at most 15 digits, the locale's decimal sign, no
/// grouping and no leading blank, E+nn only for what 15 places cannot hold.
QString text(double value);
QString text(double value, const QLocale& locale);
QString text(int value);
QString text(qint64 value);
QString text(bool value);

} // namespace basic
