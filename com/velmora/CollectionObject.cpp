// Velmora's Collection: VB's Collection as the component's callers use it. Items are Variants,
// optionally with a text key (matched without regard to case); indexes are 1-based.

#include <memory>
#include <string>
#include <vector>

#include "Velmora_h.h"
#include "com/velmora/VelmoraObjects.h"
#include "vb/Text.h"

namespace tovrand::velmora {

namespace {

const IID kCollectionIid = com::guidOf("{760BA4CD-7419-4D0D-A9D1-C780477B73EB}");

struct Element {
  VARIANT value;
  std::string key;
};

// The elements, shared with the enumerators handed out by _NewEnum.
class Elements {
 public:
  Elements() = default;
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;
  ~Elements() {
    for (Element& e : items) VariantClear(&e.value);
  }
  std::vector<Element> items;
};

bool isMissing(const VARIANT* v) {
  return !v || (v->vt == VT_ERROR && v->scode == DISP_E_PARAMNOTFOUND);
}

HRESULT vbError(std::int32_t number, const char* text) {
  return com::reportError(com::hresultOf(number), text, kCollectionIid, "Velmora.Collection");
}

class Enumerator final : public com::ComObject<IEnumVARIANT> {
 public:
  Enumerator(std::shared_ptr<Elements> elements, std::size_t position)
      : elements_(std::move(elements)), position_(position) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* out, ULONG* fetched) override {
    if (!out) return E_POINTER;
    ULONG n = 0;
    while (n < count && position_ < elements_->items.size()) {
      VariantInit(&out[n]);
      VariantCopy(&out[n], &elements_->items[position_].value);
      ++n;
      ++position_;
    }
    if (fetched) *fetched = n;
    return n == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    position_ += count;
    return position_ <= elements_->items.size() ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    position_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** out) override {
    if (!out) return E_POINTER;
    *out = std::make_unique<Enumerator>(elements_, position_).release();
    return S_OK;
  }

 protected:
  void* interfaceFor(REFIID riid) override {
    if (riid == IID_IUnknown || riid == IID_IEnumVARIANT) return static_cast<IEnumVARIANT*>(this);
    return nullptr;
  }

 private:
  std::shared_ptr<Elements> elements_;
  std::size_t position_;
};

class CollectionObject final : public DualObject<_Collection> {
 public:
  CollectionObject() : DualObject(kCollectionIid), elements_(std::make_shared<Elements>()) {}

  HRESULT STDMETHODCALLTYPE Add(VARIANT* item, VARIANT* key, VARIANT* before, VARIANT* after) override {
    if (!item) return E_POINTER;
    Element e;
    VariantInit(&e.value);
    if (!isMissing(key)) {
      Variant text;
      if (FAILED(VariantChangeType(text.get(), const_cast<VARIANT*>(&com::referenced(*key)), 0, VT_BSTR)))
        return vbError(13, "Type mismatch");
      e.key = com::fromBstr(text->bstrVal);
      if (find(e.key) >= 0)
        return vbError(457, "This key is already associated with an element of this collection");
    }
    std::size_t at = elements_->items.size();
    if (!isMissing(before) || !isMissing(after)) {
      long i = locate(isMissing(before) ? *after : *before);
      if (i < 0) return vbError(5, "Invalid procedure call or argument");
      at = static_cast<std::size_t>(isMissing(before) ? i + 1 : i);
    }
    HRESULT hr = VariantCopyInd(&e.value, item);
    if (FAILED(hr)) return hr;
    elements_->items.insert(elements_->items.begin() + static_cast<std::ptrdiff_t>(at), std::move(e));
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Count(long* value) override {
    if (!value) return E_POINTER;
    *value = static_cast<long>(elements_->items.size());
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Item(VARIANT* index, VARIANT* value) override {
    if (!index || !value) return E_POINTER;
    VariantInit(value);
    long i = locate(*index);
    if (i == -2) return vbError(13, "Type mismatch");
    if (i < 0) return vbError(5, "Invalid procedure call or argument");
    return VariantCopy(value, &elements_->items[static_cast<std::size_t>(i)].value);
  }

  HRESULT STDMETHODCALLTYPE _NewEnum(IUnknown** value) override {
    if (!value) return E_POINTER;
    *value = std::make_unique<Enumerator>(elements_, 0).release();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Remove(VARIANT* index) override {
    if (!index) return E_POINTER;
    long i = locate(*index);
    if (i == -2) return vbError(13, "Type mismatch");
    if (i < 0) return vbError(5, "Invalid procedure call or argument");
    VariantClear(&elements_->items[static_cast<std::size_t>(i)].value);
    elements_->items.erase(elements_->items.begin() + i);
    return S_OK;
  }

 private:
  long find(const std::string& key) const {
    for (std::size_t i = 0; i < elements_->items.size(); ++i)
      if (!elements_->items[i].key.empty() && equalsIgnoreCase(elements_->items[i].key, key))
        return static_cast<long>(i);
    return -1;
  }

  // The 0-based position an index (1-based number or key) names; -1 when there is none, -2 when the
  // index is neither a number nor a text.
  long locate(const VARIANT& in) const {
    const VARIANT& index = com::referenced(in);
    if ((index.vt & ~VT_BYREF) == VT_BSTR) {
      BSTR text = (index.vt & VT_BYREF) ? *index.pbstrVal : index.bstrVal;
      return find(com::fromBstr(text));
    }
    Variant number;
    if (FAILED(VariantChangeType(number.get(), const_cast<VARIANT*>(&index), 0, VT_I4))) return -2;
    long i = number->lVal;
    if (i < 1 || static_cast<std::size_t>(i) > elements_->items.size()) return -1;
    return i - 1;
  }

  using Variant = com::Variant;
  std::shared_ptr<Elements> elements_;
};

}  // namespace

HRESULT createCollection(REFIID riid, void** out) {
  return com::createInstance<CollectionObject>(riid, out);
}

}  // namespace tovrand::velmora
