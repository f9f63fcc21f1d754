"""An object store that speaks S3: the four services of OpenStack Swift in one process, without anything around them.

    s3_server.py FOLDER PROXYPORT ACCOUNTPORT CONTAINERPORT OBJECTPORT [BUCKET]...

The folder must allow extended attributes. The proxy's port opens last, when the buckets exist.
"""
import eventlet

eventlet.patcher.monkey_patch(all=False, socket=True, select=True, thread=True)

import base64
import hashlib
import hmac
import os
import sys
from email.utils import formatdate

from eventlet import wsgi

from swift.common import storage_policy, utils
from swift.common.ring.builder import RingBuilder
from swift.common.swob import Request
from swift.common.utils import NullLogger
from swift.common.wsgi import SwiftHttpProtocol, loadapp

folder = os.path.abspath(sys.argv[1])
ports = dict(zip(("proxy", "account", "container", "object"), map(int, sys.argv[2:6])))
buckets = sys.argv[6:]

# Who may do what: the administrator of the account, and a user of it who may do nothing.
USERS = {"test:tester": "testing .admin", "test:other": "testing2"}

SWIFT = """
[swift-hash]
swift_hash_path_suffix = suffix
swift_hash_path_prefix = prefix
[storage-policy:0]
name = only
default = yes
"""

BACKEND = """
[DEFAULT]
devices = {folder}/devices
swift_dir = {folder}
mount_check = false
bind_ip = 127.0.0.1
bind_port = {port}
workers = 0
fallocate_reserve = 0
disable_fallocate = true
log_level = ERROR
[pipeline:main]
pipeline = {service}-server
[app:{service}-server]
use = egg:swift#{service}
"""

FILTERS = "catch_errors gatekeeper listing_formats bulk s3api tempauth copy slo dlo versioned_writes symlink".split()
FILTER_OPTIONS = {
    "s3api": "location = us-east-1\ns3_acl = false\n",
    "tempauth": "".join("user_%s = %s\n" % (name.replace(":", "_"), rights) for name, rights in USERS.items()),
}
PROXY = """
[DEFAULT]
swift_dir = {folder}
bind_ip = 127.0.0.1
bind_port = {port}
log_level = ERROR
[pipeline:main]
pipeline = {filters} proxy-server
[app:proxy-server]
use = egg:swift#proxy
account_autocreate = true
allow_account_management = true
"""


class Cache(dict):
    """Stands in for memcached, without which the authentication refuses to work."""

    def __bool__(self):
        return True

    def get(self, key, raise_on_error=False, **options):
        return dict.get(self, key)

    def set(self, key, value, **options):
        self[key] = value
        return True

    def incr(self, key, delta=1, **options):
        self[key] = max(0, int(dict.get(self, key, 0)) + delta)
        return self[key]

    def decr(self, key, delta=1, **options):
        return self.incr(key, -delta)

    def delete(self, key, **options):
        self.pop(key, None)

    def set_multi(self, values, server_key, **options):
        self.update(values)

    def get_multi(self, keys, server_key, **options):
        return [dict.get(self, key) for key in keys]


def write(name, text):
    with open(os.path.join(folder, name), "w") as file:
        file.write(text)


def configure():
    os.makedirs(os.path.join(folder, "devices", "d1"), exist_ok=True)
    write("swift.conf", SWIFT)
    for service in ("account", "container", "object"):
        write(service + ".conf", BACKEND.format(folder=folder, port=ports[service], service=service))
    proxy = PROXY.format(folder=folder, port=ports["proxy"], filters=" ".join(FILTERS))
    for name in FILTERS:
        proxy += "[filter:%s]\nuse = egg:swift#%s\n%s" % (name, name, FILTER_OPTIONS.get(name, ""))
    write("proxy.conf", proxy)
    utils.SWIFT_CONF_FILE = os.path.join(folder, "swift.conf")
    utils.validate_hash_conf()
    storage_policy.reload_storage_policies()
    for service in ("account", "container", "object"):
        device = {"id": 0, "region": 1, "zone": 1, "weight": 1.0, "device": "d1"}
        for role in ("", "replication_"):
            device.update({role + "ip": "127.0.0.1", role + "port": ports[service]})
        builder = RingBuilder(part_power=2, replicas=1, min_part_hours=0)
        builder.add_dev(device)
        builder.rebalance()
        builder.get_ring().save(os.path.join(folder, service + ".ring.gz"))


def listen(service):
    return eventlet.listen(("127.0.0.1", ports[service]), reuse_port=False)


def serve(service, application, socket):
    return eventlet.spawn(
        wsgi.server, socket, application, NullLogger(), protocol=SwiftHttpProtocol,
        capitalize_response_headers=False, custom_pool=eventlet.GreenPool(64))


def load(service):
    return loadapp(os.path.join(folder, service + ".conf"), global_conf={"log_level": "ERROR"})


def create_bucket(application, name):
    path = "/" + name
    date = formatdate(usegmt=True)
    text = "PUT\n\n\n%s\n%s" % (date, path)
    mac = hmac.new(b"testing", text.encode(), hashlib.sha1).digest()
    headers = {"Date": date, "Authorization": "AWS test:tester:" + base64.b64encode(mac).decode()}
    response = Request.blank(path, method="PUT", headers=headers).get_response(application)
    if response.status_int != 200:
        sys.exit("The bucket %s cannot be made: %s %s" % (name, response.status, response.body))


configure()
wsgi.WRITE_TIMEOUT = None
servers = [serve(service, load(service), listen(service)) for service in ("account", "container", "object")]
cache = Cache()
proxy = load("proxy")


def application(environment, start_response):
    environment["swift.cache"] = cache
    return proxy(environment, start_response)


for bucket in buckets:
    create_bucket(application, bucket)
servers.append(serve("proxy", application, listen("proxy")))
for server in servers:
    server.wait()
