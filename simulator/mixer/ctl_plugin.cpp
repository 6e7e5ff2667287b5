// The sound library's way to the simulated card: a control plugin. The library calls it with a lock of its own held,
// from any thread.
#include <alsa/asoundlib.h>
#include <alsa/control_external.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "mixer_file.h"

namespace {

// The key of an element is its place in kElementNames; the file says anew what it is.
std::optional<MixerElement> ElementOf(snd_ctl_ext_key_t key) {
  return ReadElement(key);
}

std::vector<size_t> PresentElements() {
  std::vector<size_t> present;
  for (size_t element = 0; element < kElements; ++element) {
    if (ReadElement(element)) present.push_back(element);
  }
  return present;
}

void Close(snd_ctl_ext_t* card) {
  delete card;
}

int CountElements(snd_ctl_ext_t* /*card*/) {
  return static_cast<int>(PresentElements().size());
}

int NameElement(snd_ctl_ext_t* /*card*/, unsigned int place, snd_ctl_elem_id_t* id) {
  const std::vector<size_t> present = PresentElements();
  if (place >= present.size()) return -EINVAL;
  snd_ctl_elem_id_set_interface(id, SND_CTL_ELEM_IFACE_MIXER);
  snd_ctl_elem_id_set_name(id, kElementNames[present[place]]);
  return 0;
}

snd_ctl_ext_key_t FindElement(snd_ctl_ext_t* /*card*/, const snd_ctl_elem_id_t* id) {
  if (snd_ctl_elem_id_get_interface(id) != SND_CTL_ELEM_IFACE_MIXER || snd_ctl_elem_id_get_index(id) != 0) {
    return SND_CTL_EXT_KEY_NOT_FOUND;
  }
  for (size_t element = 0; element < kElements; ++element) {
    if (std::strcmp(snd_ctl_elem_id_get_name(id), kElementNames[element]) != 0) continue;
    return ReadElement(element) ? element : SND_CTL_EXT_KEY_NOT_FOUND;
  }
  return SND_CTL_EXT_KEY_NOT_FOUND;
}

int SoundType(ElementType type) {
  switch (type) {
    case ElementType::kInteger:
      return SND_CTL_ELEM_TYPE_INTEGER;
    case ElementType::kInteger64:
      return SND_CTL_ELEM_TYPE_INTEGER64;
    case ElementType::kBoolean:
      return SND_CTL_ELEM_TYPE_BOOLEAN;
    case ElementType::kEnumerated:
      return SND_CTL_ELEM_TYPE_ENUMERATED;
    case ElementType::kBytes:
      return SND_CTL_ELEM_TYPE_BYTES;
  }
  return SND_CTL_ELEM_TYPE_NONE;
}

int Describe(snd_ctl_ext_t* /*card*/, snd_ctl_ext_key_t key, int* type, unsigned int* access,
             unsigned int* count) {
  const auto element = ElementOf(key);
  if (!element) return -ENOENT;
  *type = SoundType(element->type);
  *access = SND_CTL_EXT_ACCESS_READWRITE;
  *count = static_cast<unsigned int>(element->values.size());
  return 0;
}

template <typename Number>
int TellRange(snd_ctl_ext_t* /*card*/, snd_ctl_ext_key_t key, Number* min, Number* max, Number* step) {
  const auto element = ElementOf(key);
  if (!element) return -ENOENT;
  *min = element->min;
  *max = element->max;
  *step = 0;
  return 0;
}

int CountItems(snd_ctl_ext_t* /*card*/, snd_ctl_ext_key_t key, unsigned int* items) {
  const auto element = ElementOf(key);
  if (!element) return -ENOENT;
  *items = static_cast<unsigned int>(element->max) + 1;
  return 0;
}

int NameItem(snd_ctl_ext_t* /*card*/, snd_ctl_ext_key_t /*key*/, unsigned int item, char* name, size_t size) {
  std::snprintf(name, size, "%u", item);
  return 0;
}

template <typename Number>
int Read(snd_ctl_ext_t* /*card*/, snd_ctl_ext_key_t key, Number* values) {
  const auto element = ElementOf(key);
  if (!element) return -ENOENT;
  std::transform(element->values.begin(), element->values.end(), values,
                 [](int64_t value) { return static_cast<Number>(value); });
  return 0;
}

// 1 for a change, 0 for none, as drivers answer.
template <typename Number>
int Write(snd_ctl_ext_t* /*card*/, snd_ctl_ext_key_t key, Number* values) {
  const auto element = ElementOf(key);
  if (!element) return -ENOENT;
  ChannelValues wanted;
  std::copy_n(values, wanted.size(), wanted.begin());
  if (!Takes(*element, wanted)) return -EINVAL;
  if (wanted == element->values) return 0;
  return StoreValues(key, wanted) ? 1 : -EIO;
}

int ReadBytes(snd_ctl_ext_t* card, snd_ctl_ext_key_t key, unsigned char* data, size_t /*size*/) {
  return Read(card, key, data);
}

int WriteBytes(snd_ctl_ext_t* card, snd_ctl_ext_key_t key, unsigned char* data, size_t /*size*/) {
  return Write(card, key, data);
}

// The file's changes are not announced.
int NoEvent(snd_ctl_ext_t* /*card*/, snd_ctl_elem_id_t* /*id*/, unsigned int* /*mask*/) {
  return -EAGAIN;
}

constexpr snd_ctl_ext_callback_t Callbacks() {
  snd_ctl_ext_callback_t calls{};
  calls.close = Close;
  calls.elem_count = CountElements;
  calls.elem_list = NameElement;
  calls.find_elem = FindElement;
  calls.get_attribute = Describe;
  calls.get_integer_info = TellRange<long>;
  calls.get_integer64_info = TellRange<int64_t>;
  calls.get_enumerated_info = CountItems;
  calls.get_enumerated_name = NameItem;
  calls.read_integer = Read<long>;
  calls.read_integer64 = Read<int64_t>;
  calls.read_enumerated = Read<unsigned int>;
  calls.read_bytes = ReadBytes;
  calls.write_integer = Write<long>;
  calls.write_integer64 = Write<int64_t>;
  calls.write_enumerated = Write<unsigned int>;
  calls.write_bytes = WriteBytes;
  calls.read_event = NoEvent;
  return calls;
}

constexpr snd_ctl_ext_callback_t kCallbacks = Callbacks();

template <size_t size>
void SetText(char (&field)[size], const char* text) {
  std::snprintf(field, size, "%s", text);
}

int OpenCard(snd_ctl_t** control, snd_config_t* settings, const char* name, int mode) {
  snd_config_t* entry = nullptr;
  const char* number = "0";
  if (snd_config_search(settings, "card", &entry) >= 0 && snd_config_get_string(entry, &number) < 0) {
    return -EINVAL;
  }
  if (std::strcmp(number, "0") != 0 || !CardIsPresent()) return -ENODEV;
  auto card = std::make_unique<snd_ctl_ext_t>();
  card->version = SND_CTL_EXT_VERSION;
  card->card_idx = 0;
  SetText(card->id, "sim");
  SetText(card->driver, "zqsim");
  SetText(card->name, "Simulated card");
  SetText(card->longname, "The simulated device's sound card");
  SetText(card->mixername, "Simulated mixer");
  card->poll_fd = -1;
  card->callback = &kCallbacks;
  const int result = snd_ctl_ext_create(card.get(), name, mode);
  if (result < 0) return result;
  *control = card.release()->handle;  // Close deletes it
  return 0;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
SND_CTL_PLUGIN_DEFINE_FUNC(zqsim);
SND_CTL_PLUGIN_DEFINE_FUNC(zqsim) {
  (void)root;
  try {
    return OpenCard(handlep, conf, name, mode);
  } catch (const std::bad_alloc&) {
    return -ENOMEM;
  }
}
SND_CTL_PLUGIN_SYMBOL(zqsim);
}
#pragma GCC visibility pop
