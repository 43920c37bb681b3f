#include "platform/linux/PropertyListFile.h"

#include "base/Text.h"

#include <QByteArray>
#include <QString>

#include <fmt/format.h>

#include <chrono>
#include <utility>

namespace brindle {

namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

constexpr std::string_view kReplacement = "\uFFFD";

class Writer {
public:
    std::string write(const PropertyValue::Dictionary &values);

    void operator()(bool value) { line(value ? "<true/>" : "<false/>"); }
    void operator()(std::int64_t value) { line(fmt::format("<integer>{}</integer>", value)); }
    void operator()(double value) { line(fmt::format("<real>{}</real>", value)); }
    void operator()(const std::string &value) { textLine("string", value); }
    void operator()(PropertyValue::Date value);
    void operator()(const PropertyValue::Data &value);
    void operator()(const PropertyValue::Array &elements);
    void operator()(const PropertyValue::Dictionary &members);

private:
    template <typename Content>
    void nested(std::string_view element, const Content &content);
    void line(std::string_view element);
    void textLine(std::string_view element, std::string_view text);
    void appendText(std::string_view text);

    std::string m_text;
    std::size_t m_depth = 0;
};

std::string Writer::write(const PropertyValue::Dictionary &values)
{
    m_text = kHead;
    (*this)(values);
    line("</plist>");
    return std::move(m_text);
}

void Writer::operator()(PropertyValue::Date value)
{
    const auto second = std::chrono::floor<std::chrono::seconds>(value);
    const auto midnight = std::chrono::floor<std::chrono::days>(second);
    const std::chrono::year_month_day day(midnight);
    const std::chrono::hh_mm_ss time(second - midnight);
    line(fmt::format("<date>{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z</date>", static_cast<int>(day.year()),
                     static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()), time.hours().count(),
                     time.minutes().count(), time.seconds().count()));
}

void Writer::operator()(const PropertyValue::Data &value)
{
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(value.data()), // bytes of any kind
                                               static_cast<qsizetype>(value.size()));
    line(fmt::format("<data>{}</data>", bytes.toBase64().toStdString()));
}

void Writer::operator()(const PropertyValue::Array &elements)
{
    nested("array", [&] {
        for (const PropertyValue &element : elements)
            element.visit(*this);
    });
}

void Writer::operator()(const PropertyValue::Dictionary &members)
{
    nested("dict", [&] {
        for (const auto &[key, value] : members) {
            textLine("key", key);
            value.visit(*this);
        }
    });
}

template <typename Content>
void Writer::nested(std::string_view element, const Content &content)
{
    line(fmt::format("<{}>", element));
    if (m_depth++ < kMaxPropertyListDepth)
        content();
    --m_depth;
    line(fmt::format("</{}>", element));
}

void Writer::line(std::string_view element)
{
    m_text.append(m_depth, '\t').append(element).push_back('\n');
}

void Writer::textLine(std::string_view element, std::string_view text)
{
    m_text.append(m_depth, '\t').append("<").append(element).append(">");
    appendText(isUtf8(text) ? text : QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toStdString());
    m_text.append("</").append(element).append(">\n");
}

/// The XML form of \a text, which is UTF-8. A carriage return must be a reference, or readers turn it into a newline.
void Writer::appendText(std::string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        const std::string_view three = text.substr(i, 3);
        if (character == '&')
            m_text += "&amp;";
        else if (character == '<')
            m_text += "&lt;";
        else if (character == '>')
            m_text += "&gt;";
        else if (character == '\r')
            m_text += "&#13;";
        else if (character >= 0 && character < ' ' && character != '\t' && character != '\n')
            m_text += kReplacement;
        else if (three == "\uFFFE" || three == "\uFFFF")
            m_text += kReplacement, i += 2;
        else
            m_text += character;
    }
}

} // namespace

std::string writePropertyList(const PropertyValue::Dictionary &values)
{
    return Writer().write(values);
}

} // namespace brindle
