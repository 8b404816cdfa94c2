#include "ovwcmn/xcexception.h"

#include "Utility/hooks.h"
#include "foundation/stringtables.h"
#include "ovwcmn/xcstring.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

using namespace ovw::foundation;

namespace {

bool isStringID(int id) { return id >= 1 && id <= cnLastStringID; }

std::optional<std::string> findText(StringTables& tables, int id) {
    if (!isStringID(id))
        return std::nullopt;
    try {
        return tables.find(id);
    } catch (const std::bad_alloc&) {
        xcThrowError(cnCodeNoMemory);
    }
}

} // namespace

XCStringResource::XCStringResource() : m_tables(std::make_unique<StringTables>()) {}

XCStringResource::~XCStringResource() = default;

int XCStringResource::AddText(const char* text, std::uint32_t size) {
    if (!text || size == 0)
        return 0;
    try {
        StringTable table = parseStringTable({text, size});
        if (table.empty())
            return 0;
        m_tables->add(std::move(table));
        return 1;
    } catch (const std::exception&) {
        return 0;
    }
}

int XCStringResource::AddResource(HINSTANCE module, HRSRC resource) {
    if (!resource)
        return 0;
    std::uint32_t size = 0;
    const void* const bytes = ovw::utility::hooks().loadResource(module, resource, &size);
    return AddText(static_cast<const char*>(bytes), size);
}

int XCStringResource::LoadStringA(XCString& out, int id) const {
    if (!isStringID(id))
        return 0;
    const std::optional<std::string> text = findText(*m_tables, id);
    out = text ? text->c_str() : "";
    return text.has_value();
}

int XCStringResource::LoadStringA(char* buffer, int size, int id) const {
    if (!buffer || size < 1)
        return 0;
    const auto room = static_cast<std::size_t>(size);
    std::memset(buffer, 0, room);
    const std::optional<std::string> text = findText(*m_tables, id);
    if (text)
        std::memcpy(buffer, text->data(), std::min(text->size(), room));
    return text.has_value();
}

int XCStringResource::LoadStringA(XCWideString& out, int id) const {
    if (!isStringID(id))
        return 0;
    XCString text;
    if (!LoadStringA(text, id)) {
        out.Empty();
        return 0;
    }
    return text.ConvertAnsiToWide(out);
}

int XCStringResource::LoadStringA(char16_t* buffer, int size, int id) const {
    if (!buffer || size < 1)
        return 0;
    std::fill_n(buffer, size, u'\0');
    XCWideString text;
    if (!LoadStringA(text, id))
        return 0;
    std::copy_n(text.GetStr(), std::min(text.GetLength(), size), buffer);
    return 1;
}

int XCStringResource::doAlert(HWND owner, std::uint32_t alertID, int code, const char* p1, const char* p2,
                              const char* p3, const char* p4, const char* p5) {
    XCAlert alert;
    alert.SetAlertID(alertID, code, p1, p2, p3, p4, p5);
    return alert.doAlert(owner, this);
}

XCStringResource* xcGetStringResource() {
    static XCStringResource s_resource;
    return &s_resource;
}
