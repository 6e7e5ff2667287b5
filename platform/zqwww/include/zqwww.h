// libzqwww: the platform's HTTP library. One exchange, a request and its answer, a connection; HTTP/1.1.
//
// A server's certificate and name are always verified, by TLS 1.2 or newer, against the system's trust store;
// $ZQ_CA_FILE names a file of further certificates (PEM), and /etc/zqwww.ini, section "tls", may say
// "trust_store" (a file or folder in place of the system's) and "extra_ca" (a further file). Nothing turns the
// verification off.
//
// The environment variable "http_proxy" ("http://HOST[:PORT]", longer than those 7 characters, else ignored;
// without a port, or with port 0, the port of the server) is honoured for http, where the request names the
// whole URL, and for https, which is tunnelled; "no_proxy" (hosts and domains between commas or blanks, or
// "*") for those that are reached directly. A proxy text that names no host fails the connection: nobody's
// proxy is passed by in silence. A proxy that asks who we are is not supported. Both are read once, when a
// zq_URL is made and in SSLHTTP::Connect; a thread that changes the environment meanwhile is the caller's to
// keep away.
//
// Limits: 30 s until a connection stands, 60 s without a byte, 64 KiB of header fields. Why something failed
// is in the trace under "zqwww".
#ifndef ZQWWW_H
#define ZQWWW_H

#include <stddef.h>
#include <stdint.h>

#define ZQWWW_API __attribute__((visibility("default")))

#ifdef __cplusplus
#include <memory>

extern "C" {
#endif

// Prepares the transport and TLS libraries for the process. Counted: each call that returned 1 is
// paired with one zqwww_term. Returns 1, or 0 when they cannot be prepared. Any thread.
ZQWWW_API int zqwww_init(void);
// The last one gives back what the libraries hold, once no connection is left. Without an init before, does
// nothing.
ZQWWW_API void zqwww_term(void);

#ifdef __cplusplus
}

// A URL taken apart: "http" or "https", without user and password, at most 4096 bytes. Never changes; any
// thread. The texts are the object's own; those of a URL that is not valid are empty.
class ZQWWW_API zq_URL {
 public:
  // Null and texts that are no such URL make one that is not valid.
  explicit zq_URL(const char* text);
  zq_URL(const zq_URL& other);
  zq_URL& operator=(const zq_URL&) = delete;
  ~zq_URL();

  bool valid() const;
  // "http" or "https".
  const char* scheme() const;
  // The name or address alone, an IPv6 address in its brackets.
  const char* host() const;
  // 1 to 65535, the scheme's own when the text names none; 0 when not valid.
  int port() const;
  // What the Host header says: the host, with the port when it is not the scheme's own.
  const char* hostText() const;
  // What the request line says, blanks and bytes beyond ASCII encoded: path and query, or the whole URL when
  // the connection goes to a proxy that does not tunnel.
  const char* requestTarget() const;

 private:
  friend class HTTP;
  friend class SSLHTTP;
  struct Parts;
  std::unique_ptr<const Parts> parts_;
};

// One piece of an answer's body; good until the callback returns.
struct zq_HttpResponse {
  int64_t contentLength;  // of the whole body; 0 while it is unknown, and then known in the last call
  int64_t received;       // of the body so far, this piece included
  const char* chunk;      // no NUL follows
  size_t chunkLength;     // 0 only in the last call
  int status;             // 200 to 299
};

class HTTP;
typedef void (*zq_HttpCallback)(HTTP* http);
typedef void (*zq_HttpDataCallback)(HTTP* http, const zq_HttpResponse* response);

// One exchange that calls back. The callbacks run on a thread of the library's own, one after another:
//
//   connected, data..., disconnected      data ends with received == contentLength when the body is whole
//   error, disconnected                   no connection could be made
//
// The request is sent from within connected; without one the exchange is over. An answer counts only when
// its status is 200 to 299 (but 206) and its header is whole and sound: of any other nothing is given to data.
// A body's end is told by Content-Length or chunks; a body whose end is the connection's is taken over https
// alone, where a cut can be told. A body that is cut, late, damaged or beyond 2 GiB - 1 never reaches
// received == contentLength. A whole body without a byte is one data call with all of them 0. Redirects are
// not followed. The connection ends with the body; the server is not waited for.
class ZQWWW_API HTTP {
 public:
  HTTP();
  HTTP(const HTTP&) = delete;
  HTTP& operator=(const HTTP&) = delete;
  // Closes. Any thread.
  virtual ~HTTP();
  // Ends what is under way and waits until the library's thread is out of the callbacks: none comes after it
  // returned, disconnected neither. From within one of the callbacks it does not wait; that callback is the last.
  // Any thread. A class that is derived from this one, and whose members the callbacks use, calls it first in its
  // destructor.
  void close();

  // The most that one data call gives, in bytes; 65536 unless set, kept within 1024 and 4 MiB. Before connect.
  void setMaxIncomingBuffer(int bytes);
  // Begins the exchange and returns at once. 0: disconnected will come, once and last, and the object may be
  // destroyed (by another thread) from then on. -1: nothing was begun and no callback comes; the URL is null or
  // not valid, this object had its exchange, or the system gives no thread. The URL is copied, callbacks may be
  // null; `reserved` is null and `flags` 0.
  int connect(const zq_URL* url, zq_HttpDataCallback data, zq_HttpCallback error, void* reserved,
              zq_HttpCallback connected, zq_HttpCallback disconnected, int flags);
  // Gives bytes of the request, within the connected callback. Returns `size`, or -1 anywhere else.
  int send(const char* bytes, int size);
  // The URL of connect(); null before. Good while the object lives.
  const zq_URL* url() const;

 private:
  class Exchange;
  std::shared_ptr<Exchange> exchange_;
  int maxIncomingBuffer_;
};

// The transport protocol number of TCP, which SSLHTTP::Connect is given.
enum { ZQWWW_TCP = 6 };

// An exchange over TLS that the caller waits for. One thread at a time; it may be destroyed by another when no
// call is under way. Besides the limits above: 2 minutes for an exchange, 8 MiB of body.
class ZQWWW_API SSLHTTP : public HTTP {
 public:
  SSLHTTP();
  ~SSLHTTP() override;

  // A header field for every request to come, in the order given. False, and none added, when the name is no
  // token or the value has control characters.
  bool AddHeader(const char* name, const char* value);
  // Connects and shakes hands; false when there is no connection to a server that proved to be `host`. A
  // connection made before is closed. `protocol` is ZQWWW_TCP, any other is refused; port 1 to 65535.
  bool Connect(int protocol, const char* host, int port);
  // Sends a whole request, "METHOD TARGET HTTP/1.1\r\n...\r\n\r\nBODY", with the header fields added before its
  // empty line, and closes the connection after the answer. Returns the answer's body as a new string
  // (zq__free), "" too; null without a connection, when the status is not 200 to 299 (or is 206), when the
  // answer is cut, damaged or too long, or holds a NUL byte.
  char* Send(const char* request);
  // Sends a request for the path and query of `url`; Host names the server of Connect, whatever host the URL
  // names. No body: a GET; else a POST of "application/x-www-form-urlencoded". `answer`: waits and returns as
  // Send does; without, returns null when the request is sent.
  char* SendBody(const char* body, const char* url, bool answer);

 private:
  struct State;
  std::unique_ptr<State> state_;
};
#endif

#endif
