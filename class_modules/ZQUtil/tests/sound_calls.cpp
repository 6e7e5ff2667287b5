#include "sound_calls.h"

#include <alsa/asoundlib.h>
#include <dlfcn.h>

#include <utility>

namespace {

std::string g_calls;

template <typename Call>
Call Next(const char* name) {
  return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

std::string Element(snd_ctl_elem_iface_t interface, const char* name, unsigned int index) {
  return std::string(snd_ctl_elem_iface_name(interface)) + " " + name + " " + std::to_string(index);
}

}  // namespace

std::string TakeSoundCalls() {
  return std::exchange(g_calls, "");
}

#define RECORDED extern "C" __attribute__((visibility("default")))

RECORDED int snd_ctl_open(snd_ctl_t** control, const char* name, int mode) {
  g_calls += "open " + std::string(name) + " " + std::to_string(mode) + "\n";
  return Next<decltype(&snd_ctl_open)>("snd_ctl_open")(control, name, mode);
}

RECORDED int snd_ctl_elem_info(snd_ctl_t* control, snd_ctl_elem_info_t* info) {
  g_calls += "info " +
             Element(snd_ctl_elem_info_get_interface(info), snd_ctl_elem_info_get_name(info),
                     snd_ctl_elem_info_get_index(info)) +
             "\n";
  return Next<decltype(&snd_ctl_elem_info)>("snd_ctl_elem_info")(control, info);
}

RECORDED int snd_ctl_elem_write(snd_ctl_t* control, snd_ctl_elem_value_t* value) {
  g_calls += "write " +
             Element(snd_ctl_elem_value_get_interface(value), snd_ctl_elem_value_get_name(value),
                     snd_ctl_elem_value_get_index(value)) +
             " " + std::to_string(snd_ctl_elem_value_get_integer(value, 0)) + "," +
             std::to_string(snd_ctl_elem_value_get_integer(value, 1)) + "\n";
  return Next<decltype(&snd_ctl_elem_write)>("snd_ctl_elem_write")(control, value);
}
