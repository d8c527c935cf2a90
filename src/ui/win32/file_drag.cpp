#include "ui/win32/file_drag.h"

#include <atomic>

#include "ui/win32/interface.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // the system's interfaces have none
// Ends with the left mouse button; Escape cancels.
class Source final : public IDropSource {
 public:
  virtual ~Source() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDropSource);
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL escape, DWORD keys) override {
    if (escape) return DRAGDROP_S_CANCEL;
    return (keys & MK_LBUTTON) == 0 ? DRAGDROP_S_DROP : S_OK;
  }
  HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD /*effect*/) override {
    return DRAGDROP_S_USEDEFAULTCURSORS;
  }

 private:
  std::atomic<ULONG> references_ = 0;
};
#pragma GCC diagnostic pop

}  // namespace

bool DragFile(const std::filesystem::path& file) {
  Interface<IShellItem> item;
  Interface<IDataObject> data;
  if (FAILED(SHCreateItemFromParsingName(file.c_str(), nullptr, IID_IShellItem, item.put_void())) ||
      FAILED(item->BindToHandler(nullptr, BHID_DataObject, IID_IDataObject, data.put_void()))) {
    return false;
  }
  Interface<IDropSource> source;
  *source.put() = new Source;
  source->AddRef();
  DWORD effect = DROPEFFECT_NONE;
  DoDragDrop(data.get(), source.get(), DROPEFFECT_COPY, &effect);
  return true;
}

}  // namespace kerno
