# SPDX-License-Identifier: MIT
"""Syncthing on the loopback device: nothing of it leaves the machine, or lies outside its own folder."""

import copy
import json
import os
import socket
import subprocess
import time
import urllib.error
import urllib.request
import xml.etree.ElementTree as ElementTree

PATIENCE = 60  # seconds, on a busy machine
STEP = 0.02  # seconds between two looks
FOLDER = "planner"
KEY = "loopback"
ALONE = {"globalAnnounceEnabled": "false", "localAnnounceEnabled": "false", "relaysEnabled": "false", "natEnabled": "false",
         "crashReportingEnabled": "false", "startBrowser": "false", "urAccepted": "-1", "autoUpgradeIntervalH": "0",
         "reconnectionIntervalS": "1"}
ENVIRONMENT = {"STNOUPGRADE": "1", "STNODEFAULTFOLDER": "1", "STNORESTART": "1"}


class Late(Exception):
    """Something that was waited for did not happen."""


def wait_for(holds, what, patience=PATIENCE):
    """What `holds()` returns, as soon as that is true."""
    end = time.monotonic() + patience
    while not (found := holds()):
        if time.monotonic() > end:
            raise Late(f"waited {patience} s in vain: {what}")
        time.sleep(STEP)
    return found


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class Syncthing:
    """One instance, which shares the folder `data` with a peer. Its own files are below `folder`."""

    def __init__(self, name, folder, data):
        self.name, self.data = name, data
        self._home, self._log = os.path.join(folder, "syncthing"), os.path.join(folder, "syncthing.log")
        self._environment = {"PATH": "/usr/bin:/bin", "HOME": folder, "LC_ALL": "C.UTF-8", "TZ": "UTC", **ENVIRONMENT}
        self._process = None
        # Whatever proxy the environment names, the loopback device needs none.
        self._opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        self._say("generate", "--no-default-folder", "--skip-port-probing")
        self.device = self._say("--device-id").strip()
        self.port = free_port()

    def _say(self, *words):
        return subprocess.run(["syncthing", *words, "--home", self._home], env=self._environment, check=True, text=True,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=PATIENCE).stdout

    def start(self, peer, **options):
        """Ends with this process at the latest, however that ends. `options` are of the folder."""
        self._rest_port = free_port()
        self._configure(peer, options)
        command = ["setpriv", "--pdeathsig", "TERM", "syncthing", "serve", "--home", self._home, "--no-browser",
                   "--no-restart", "--no-upgrade", "--logfile", self._log, "--log-max-size=0"]
        self._process = subprocess.Popen(command, env=self._environment, stdin=subprocess.DEVNULL,
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def _configure(self, peer, options):
        path = os.path.join(self._home, "config.xml")
        tree = ElementTree.parse(path)
        root = tree.getroot()
        for element in root.findall("folder") + root.findall("device"):
            root.remove(element)
        folder = copy.deepcopy(root.find("defaults/folder"))  # what is not said counts as 0, not as the default
        folder.attrib.update(id=FOLDER, path=self.data, fsWatcherDelayS="1")
        folder.remove(folder.find("device"))
        set_texts(folder, {"minDiskFree": "0", **options})
        root.append(folder)
        for one in (self, peer):
            ElementTree.SubElement(folder, "device", id=one.device)
            device = ElementTree.SubElement(root, "device", id=one.device, name=one.name)
            set_texts(device, {"address": f"tcp://127.0.0.1:{one.port}"})
        gui = root.find("gui")
        gui.set("enabled", "true")
        gui.set("tls", "false")
        set_texts(gui, {"address": f"127.0.0.1:{self._rest_port}", "apikey": KEY})
        set_texts(root.find("options"), {**ALONE, "listenAddress": f"tcp://127.0.0.1:{self.port}"})
        tree.write(path, encoding="utf-8", xml_declaration=True)

    def rest(self, what, post=False, patience=PATIENCE):
        request = urllib.request.Request(f"http://127.0.0.1:{self._rest_port}/rest/{what}", headers={"X-API-Key": KEY},
                                         method="POST" if post else "GET")
        with self._opener.open(request, timeout=patience) as answer:
            text = answer.read()
        return json.loads(text) if text.strip() else None

    def is_up(self):
        if self._process.poll() is not None:
            raise RuntimeError(f"Syncthing {self.name} ended with {self._process.returncode}")
        try:
            return self.rest("system/ping", patience=1)["ping"] == "pong"
        except (OSError, urllib.error.URLError):
            return False

    def is_connected(self, peer):
        return self.rest("system/connections")["connections"].get(peer.device, {}).get("connected", False)

    def is_idle(self):
        status = self.rest(f"db/status?folder={FOLDER}")
        return status["state"] == "idle" and status["needTotalItems"] == 0

    def scan(self):
        self.rest(f"db/scan?folder={FOLDER}", post=True)

    def pause(self, peer):
        self.rest(f"system/pause?device={peer.device}", post=True)

    def resume(self, peer):
        self.rest(f"system/resume?device={peer.device}", post=True)

    def terminate(self):
        if self._process:
            self._process.terminate()

    def wait(self):
        """Until it has ended."""
        try:
            if self._process:
                self._process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()

    def log_tail(self, count=40):
        try:
            with open(self._log, encoding="utf-8", errors="replace") as file:
                return "".join(file.readlines()[-count:])
        except FileNotFoundError:
            return ""


def set_texts(parent, texts):
    for name, text in texts.items():
        element = parent.find(name)
        if element is None:
            element = ElementTree.SubElement(parent, name)
        element.text = text
