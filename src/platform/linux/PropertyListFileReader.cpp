#include "platform/linux/PropertyListFile.h"

#include "base/Text.h"

#include <QByteArray>
#include <QString>
#include <QXmlStreamReader>

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <optional>
#include <span>
#include <utility>

namespace brindle {

using namespace Qt::StringLiterals;

namespace {

enum class NumberFlaw { Malformed, OutOfRange };

template <typename Number>
std::variant<Number, NumberFlaw> readNumber(std::string_view text)
{
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    Number number{};
    const char *end = text.data() + text.size();
    const auto [stop, flaw] = std::from_chars(text.data(), end, number);
    if (stop != end || flaw == std::errc::invalid_argument)
        return NumberFlaw::Malformed;
    if (flaw == std::errc::result_out_of_range)
        return NumberFlaw::OutOfRange;
    return number;
}

/// "2024-07-01T12:00:00Z"; nullopt for every other form and for a day that no calendar has.
std::optional<std::chrono::sys_seconds> readDate(std::string_view text)
{
    constexpr std::string_view kForm = "dddd-dd-ddTdd:dd:ddZ";
    if (text.size() != kForm.size())
        return std::nullopt;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (kForm[i] == 'd' ? !isDigit(text[i]) : text[i] != kForm[i])
            return std::nullopt;
    }
    const auto number = [text](std::size_t position, std::size_t length) {
        return std::get<int>(readNumber<int>(text.substr(position, length)));
    };
    const std::chrono::year_month_day day{std::chrono::year(number(0, 4)),
                                          std::chrono::month(static_cast<unsigned>(number(5, 2))),
                                          std::chrono::day(static_cast<unsigned>(number(8, 2)))};
    const int hour = number(11, 2);
    const int minute = number(14, 2);
    const int second = number(17, 2);
    if (!day.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return std::chrono::sys_days(day) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           std::chrono::seconds(second);
}

bool isHeldByClock(std::chrono::sys_seconds date)
{
    using Date = PropertyValue::Date;
    return date >= std::chrono::ceil<std::chrono::seconds>(Date::min()) &&
           date <= std::chrono::floor<std::chrono::seconds>(Date::max());
}

class Reader {
public:
    explicit Reader(std::string_view bytes)
        : m_xml(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())))
    {
    }

    std::variant<PropertyList, Error> read();

private:
    void fail(const QString &reason);
    bool nextElement();
    std::string text();
    std::string trimmedText();

    struct Members {
        PropertyValue::Dictionary held;
        bool areAll = true;
    };
    Members members();
    std::optional<PropertyValue> value();
    std::optional<PropertyValue> nested(std::optional<PropertyValue> (Reader::*content)());
    std::optional<PropertyValue> boolean();
    std::optional<PropertyValue> integer() { return number<std::int64_t>(); }
    std::optional<PropertyValue> real() { return number<double>(); }
    template <typename Number>
    std::optional<PropertyValue> number();
    std::optional<PropertyValue> date();
    std::optional<PropertyValue> data();
    std::optional<PropertyValue> array();
    std::optional<PropertyValue> dictionary();

    QXmlStreamReader m_xml;
    std::size_t m_depth = 0;
    bool m_isComplete = true;
};

std::variant<PropertyList, Error> Reader::read()
{
    PropertyValue::Dictionary values;
    if (!nextElement() || m_xml.name() != "plist"_L1)
        fail(u"not a property list"_s);
    else if (!nextElement() || m_xml.name() != "dict"_L1)
        fail(u"no dictionary at the top"_s);
    else
        values = members().held;
    if (nextElement())
        fail(u"more than one value at the top"_s);
    while (!m_xml.atEnd())
        m_xml.readNext();
    if (m_xml.hasError())
        return Error("PropertyListError", 1,
                     fmt::format("line {}: {}", m_xml.lineNumber(), m_xml.errorString().toStdString()));
    return PropertyList{.values = std::move(values), .isComplete = m_isComplete};
}

void Reader::fail(const QString &reason)
{
    if (!m_xml.hasError())
        m_xml.raiseError(reason);
}

/// Moves to the next element inside the current one; false at the current one's end.
bool Reader::nextElement()
{
    while (!m_xml.atEnd()) {
        const QXmlStreamReader::TokenType token = m_xml.readNext();
        if (token == QXmlStreamReader::StartElement)
            return true;
        if (token == QXmlStreamReader::EndElement)
            return false;
        if (token == QXmlStreamReader::EntityReference ||
            (token == QXmlStreamReader::Characters && !m_xml.isWhitespace()))
            fail(u"text outside of a value"_s);
    }
    return false;
}

std::string Reader::text()
{
    QString result;
    for (;;) {
        switch (m_xml.readNext()) {
        case QXmlStreamReader::Characters:
            result += m_xml.text();
            break;
        case QXmlStreamReader::Comment:
            break;
        case QXmlStreamReader::EndElement:
            return result.toStdString();
        default:
            fail(u"not a text"_s); // an element, or an entity that nobody has declared
            return {};
        }
    }
}

std::string Reader::trimmedText()
{
    return QString::fromStdString(text()).trimmed().toStdString();
}

Reader::Members Reader::members()
{
    Members result;
    while (nextElement()) {
        if (m_xml.name() != "key"_L1)
            fail(u"a value without a key"_s);
        const std::string key = text();
        if (!nextElement())
            fail(u"a key without a value"_s);
        if (std::optional<PropertyValue> held = value())
            m_isComplete &= result.held.insert_or_assign(key, *std::move(held)).second;
        else
            result.areAll = m_isComplete = false;
    }
    return result;
}

/// The value of the current element; nullopt where it can't be held or is malformed, which is an error then.
std::optional<PropertyValue> Reader::value()
{
    const QStringView kind = m_xml.name();
    if (kind == "true"_L1 || kind == "false"_L1)
        return boolean();
    if (kind == "integer"_L1)
        return integer();
    if (kind == "real"_L1)
        return real();
    if (kind == "string"_L1)
        return text();
    if (kind == "date"_L1)
        return date();
    if (kind == "data"_L1)
        return data();
    if (kind == "array"_L1)
        return nested(&Reader::array);
    if (kind == "dict"_L1)
        return nested(&Reader::dictionary);
    if (kind == "key"_L1)
        fail(u"a key without a value"_s);
    m_xml.skipCurrentElement();
    return std::nullopt;
}

std::optional<PropertyValue> Reader::nested(std::optional<PropertyValue> (Reader::*content)())
{
    if (m_depth == kMaxPropertyListDepth) {
        fail(u"nested too deeply"_s);
        return std::nullopt;
    }
    ++m_depth;
    std::optional<PropertyValue> result = (this->*content)();
    --m_depth;
    return result;
}

std::optional<PropertyValue> Reader::boolean()
{
    const bool isTrue = m_xml.name() == "true"_L1;
    if (!text().empty())
        fail(u"text in a Boolean"_s);
    return isTrue;
}

template <typename Number>
std::optional<PropertyValue> Reader::number()
{
    const auto number = readNumber<Number>(trimmedText());
    if (const Number *held = std::get_if<Number>(&number))
        return *held;
    if (std::get<NumberFlaw>(number) == NumberFlaw::Malformed)
        fail(u"not a number"_s);
    return std::nullopt;
}

std::optional<PropertyValue> Reader::date()
{
    const std::optional<std::chrono::sys_seconds> date = readDate(trimmedText());
    if (!date)
        fail(u"not a date"_s);
    if (!date || !isHeldByClock(*date))
        return std::nullopt;
    return PropertyValue::Date(*date);
}

std::optional<PropertyValue> Reader::data()
{
    QByteArray base64 = QByteArray::fromStdString(text());
    base64.removeIf([](char character) { return character == ' ' || character == '\t' || character == '\n'; });
    const auto result = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!result) {
        fail(u"not base64 data"_s);
        return std::nullopt;
    }
    const auto bytes = std::as_bytes(std::span(result.decoded.cbegin(), result.decoded.cend()));
    return PropertyValue::Data(bytes.begin(), bytes.end());
}

std::optional<PropertyValue> Reader::array()
{
    PropertyValue::Array elements;
    bool areAll = true;
    while (nextElement()) {
        if (std::optional<PropertyValue> held = value())
            elements.push_back(*std::move(held));
        else
            areAll = false;
    }
    return areAll ? std::optional<PropertyValue>(std::move(elements)) : std::nullopt;
}

std::optional<PropertyValue> Reader::dictionary()
{
    Members result = members();
    return result.areAll ? std::optional<PropertyValue>(std::move(result.held)) : std::nullopt;
}

} // namespace

std::variant<PropertyList, Error> readPropertyList(std::string_view bytes)
{
    return Reader(bytes).read();
}

} // namespace brindle
