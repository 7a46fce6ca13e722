#!/usr/bin/env python3
# A small HTTP server on 127.0.0.1 that misbehaves on purpose, for the download tests.
#
# Usage: http_test_server.py SOURCE_FILE
# Prints the port it listens on (an ephemeral one) as the first line of stdout, then
# serves the bytes of SOURCE_FILE under these paths:
#
#   /file/NAME     the file, with Range answered by 206 and Content-Range
#   /drop/NAME     the first request gets half the body, then the connection is cut;
#                  later requests are served like /file
#   /norange/NAME  like /drop, but later requests ignore Range and send the whole file (200)
#   /short/NAME    every answer announces the full length of what it covers but sends half
#   /stall/NAME    headers, then silence
#   /redirect/NAME 302 to /file/NAME
#   anything else  404
#
# It ends when its stdin closes. To compare with a common command-line client, start
# it on any file and fetch with `curl -sS -C - -o f http://127.0.0.1:PORT/drop/f`:
# curl 7.88 stops with exit 18 and half the file, and a second run resumes (206).
# On /norange/ its second run stops with exit 33, where loom pkg fetch starts the
# .part file again; on /short/ every run adds half of what is left, where loom gives
# up at its retry limit; on /stall/ it waits without --max-time, where loom fails
# after its transfer timeout; /redirect/ and /missing/ bodies are saved without -L
# or -f, where loom fails with "server replied 302 Found" or "404 Not Found".
import http.server
import os
import sys
import threading
import time

SOURCE = open(sys.argv[1], "rb").read()
seen = set()  # paths asked for before; each test asks for a path once at a time


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    log_message = lambda *args: None

    def head(self, code, length, headers={}):
        self.send_response(code)
        for name, value in [("Content-Length", str(length))] + list(headers.items()):
            self.send_header(name, value)
        self.end_headers()

    # Sends SOURCE from `start`, or only `fraction` of it and then cuts the connection.
    def send_body(self, start, fraction=1.0):
        body = SOURCE[start:]
        if start > 0:
            self.head(206, len(body), {"Content-Range": "bytes %d-%d/%d" % (start, len(SOURCE) - 1, len(SOURCE))})
        else:
            self.head(200, len(body))
        self.wfile.write(body[: int(len(body) * fraction)])
        self.wfile.flush()
        if fraction < 1.0:
            self.close_connection = True
            self.connection.shutdown(2)

    def do_GET(self):
        kind = self.path.split("/")[1] if self.path.count("/") >= 2 else ""
        asked = self.headers.get("Range", "")
        start = int(asked[6:-1]) if asked.startswith("bytes=") and asked.endswith("-") else 0
        first_time = self.path not in seen
        seen.add(self.path)
        if kind == "short" or kind in ("drop", "norange") and first_time:
            self.send_body(start if kind == "short" else 0, 0.5)
        elif kind in ("file", "drop", "norange"):
            self.send_body(0 if kind == "norange" else start)
        elif kind == "stall":
            self.head(200, len(SOURCE))
            self.wfile.flush()
            time.sleep(30)
        elif kind == "redirect":
            self.head(302, 0, {"Location": "/file/" + self.path.split("/", 2)[2]})
        else:
            self.head(404, 9)
            self.wfile.write(b"not found")


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
server.daemon_threads = True
server.handle_error = lambda *args: None  # a client that hangs up mid-body is what these tests are about
print(server.server_address[1], flush=True)
# Ends with the test: stdin closes when the test process goes away.
threading.Thread(target=lambda: (sys.stdin.read(), os._exit(0)), daemon=True).start()
server.serve_forever()
