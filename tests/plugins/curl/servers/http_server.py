"""Serves the files of a directory on a free port of 127.0.0.1, as well or as badly as each request's query asks.

usage: http_server.py DIRECTORY [CERTIFICATE]

Prints the port. With a certificate, a PEM file that holds the key too, the server speaks https.

What a query may hold:
  status=N           the status code
  type=T             a Content-Type header; without it there is none
  disposition=T      a Content-Disposition header
  cookie=T           a Set-Cookie header
  length=N           the announced length instead of the real one; "none" announces none and closes at the end
  chunked=1          chunked transfer coding; with cut=N it has no end
  cut=N              only the first N bytes, then the connection is closed
  reset=1            with cut: the connection is reset instead
  stall=N            only the first N bytes, then nothing more comes
  pace=S             a pause of S seconds after each byte
  to=URL             a redirect to the URL
  hops=N             a redirect to the same path with hops=N-1, until N is 0
  echo=1             the body is the request's own lines
"""

import http.server
import os
import socket
import ssl
import struct
import sys
import time
import urllib.parse


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        parts = urllib.parse.urlsplit(self.path)
        self.query = dict(urllib.parse.parse_qsl(parts.query, keep_blank_values=True))
        target = self.redirect_target(parts)
        if target is not None:
            self.send_head(b"", {"Location": target}, int(self.query.get("status", 302)))
            return
        body = self.echo() if "echo" in self.query else self.read_file(parts.path)
        if body is None:
            self.send_head(b"", {}, 404)
            return
        self.send_head(body, {}, int(self.query.get("status", 200)))
        self.send_body(body)

    def redirect_target(self, parts):
        hops = int(self.query.get("hops", 0))
        if hops > 0:
            return urllib.parse.quote(parts.path) + "?hops=%d" % (hops - 1)
        return self.query.get("to")

    def echo(self):
        return (self.requestline + "\n" + str(self.headers)).encode()

    def read_file(self, path):
        name = os.path.basename(urllib.parse.unquote(path))
        try:
            with open(os.path.join(sys.argv[1], name), "rb") as file:
                return file.read()
        except OSError:
            return None

    def send_head(self, body, headers, status):
        self.send_response(status)
        wanted = {"type": "Content-Type", "disposition": "Content-Disposition", "cookie": "Set-Cookie"}
        for key, name in wanted.items():
            if key in self.query:
                headers[name] = self.query[key]
        if "chunked" in self.query:
            headers["Transfer-Encoding"] = "chunked"
        elif self.query.get("length") != "none":
            headers["Content-Length"] = self.query.get("length", str(len(body)))
        headers["Connection"] = "close"
        for name, value in headers.items():
            # http.server writes header lines in Latin-1; the bytes of the query are UTF-8.
            self.send_header(name, value.encode().decode("latin-1"))
        self.end_headers()

    def send_body(self, body):
        whole = "cut" not in self.query and "stall" not in self.query
        sent = body if whole else body[: int(self.query.get("cut", self.query.get("stall")))]
        if "chunked" in self.query:
            sent = b"%x\r\n%s\r\n" % (len(sent), sent) + (b"0\r\n\r\n" if whole else b"")
        if "pace" in self.query:
            for byte in sent:
                self.wfile.write(bytes([byte]))
                time.sleep(float(self.query["pace"]))
        else:
            self.wfile.write(sent)
        self.wfile.flush()
        if "stall" in self.query:
            self.connection.recv(1)  # until the client has enough
        if "reset" in self.query:
            self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            self.connection.close()

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 64

    def handle_error(self, *_):
        pass


def main():
    server = Server(("127.0.0.1", 0), Handler)
    if len(sys.argv) > 2:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(sys.argv[2])
        server.socket = context.wrap_socket(server.socket, server_side=True)
    print(server.server_address[1], flush=True)
    server.serve_forever()


main()
