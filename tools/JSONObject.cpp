#include "JSONObject.h"

#include <nlohmann/json.hpp>

namespace vantra::tool {

using kel::int64;
using kel::String;
using kel::TArray;
using nlohmann::ordered_json;

struct CJSONObject::Members {
    ordered_json json = ordered_json::object();
};

CJSONObject::CJSONObject() : members_(std::make_unique<Members>()) {}

CJSONObject::~CJSONObject() = default;

void CJSONObject::setText(const char* name, const String& value) { members_->json[name] = value.toUTF8(); }

void CJSONObject::setInteger(const char* name, int64 value) { members_->json[name] = value; }

void CJSONObject::setReal(const char* name, double value) { members_->json[name] = value; }

void CJSONObject::setBoolean(const char* name, bool value) { members_->json[name] = value; }

void CJSONObject::setNull(const char* name) { members_->json[name] = nullptr; }

void CJSONObject::setTexts(const char* name, const TArray<String>& values) {
    ordered_json list = ordered_json::array();
    for (const String& value : values) list.push_back(value.toUTF8());
    members_->json[name] = std::move(list);
}

void CJSONObject::setObject(const char* name, const CJSONObject& value) {
    members_->json[name] = value.members_->json;
}

bool CJSONObject::isEmpty() const { return members_->json.empty(); }

void CJSONObject::clear() { members_->json.clear(); }

std::string CJSONObject::toLine(bool isForTerminal) const {
    return members_->json.dump(-1, ' ', isForTerminal, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace vantra::tool
