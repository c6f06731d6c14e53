// The script of receive.html. Plain ECMAScript 5, as browsers with plug-ins speak it.
(function () {
  "use strict";

  var plugin = document.getElementById("orvane");
  var order = readOrder();
  var transferId = "";    // the transfer that this page has started
  var latest = {};        // the newest activity of every transfer, by its id
  var lastLine = "";
  // A page from disk has no host; the plug-in takes it for one of this computer.
  var host = window.location.hostname || "localhost";

  function element(id) { return document.getElementById(id); }
  function show(id, text) { element(id).textContent = text; }
  function print(line) { if (window.console) window.console.log(line); }

  // What to receive: the members of window.demo, else the parameters of the address.
  function readOrder() {
    var result = { source: "/demo.bin", destination: "", start: false };
    var parts = window.location.search.substring(1).split("&");
    for (var i = 0; i < parts.length; ++i) {
      var pair = parts[i].split("=");
      if (pair.length === 2)
        result[decodeURIComponent(pair[0])] = decodeURIComponent(pair[1].replace(/\+/g, " "));
    }
    for (var name in window.demo || {}) result[name] = window.demo[name];
    return result;
  }

  // ---- Replies --------------------------------------------------------------------------------

  // An error comes back as text too; this is the form by which it is known.
  function isError(reply) { return reply.indexOf('{"error":') === 0; }

  function errorText(reply) {
    try {
      return JSON.parse(reply).error.user_message;
    } catch (e) {
      return reply;  // the words of an error are not escaped, so it may be no JSON
    }
  }

  function fail(text) {
    show("error", text);
    show("status", "Failed");
    element("card").className = "failed";
    element("receive").disabled = !order.appId;  // nothing works without a session
    print("error: " + text);
  }

  // ---- Start of the page ----------------------------------------------------------------------

  function start() {
    show("source", order.source);
    show("destination", "Downloads" + (order.destination ? "/" + order.destination : ""));
    element("receive").onclick = receive;
    if (!plugin.queryPluginVersion) {
      show("versions", "Orvane Web is not installed in this browser.");
      fail("The plug-in is missing");
      return;
    }
    if (!openSession() || !showVersions()) return;
    element("receive").disabled = false;
    if (order.start) receive();
  }

  // An application id that begins with "^" is tied to the page's host.
  function openSession() {
    var reply = plugin.initSession("^" + host, host);
    print("session: " + reply);
    if (isError(reply)) {
      fail(errorText(reply));
      return false;
    }
    order.appId = JSON.parse(reply).app_id;
    show("session", order.appId);
    plugin.eventHandler = onEvent;
    return true;
  }

  function showVersions() {
    var version = plugin.queryPluginVersion();
    var reply = plugin.queryVantrelVersion();
    print("plug-in: " + version);
    print("client: " + reply);
    if (isError(reply)) {
      show("versions", "Orvane Web " + version);
      fail(errorText(reply));
      return false;
    }
    var client = JSON.parse(reply);
    show("versions", "Orvane Web " + version + "  ·  " + (client.product || "Orvane Vantrel") +
                     " " + client.version);
    return true;
  }

  // ---- The transfer ---------------------------------------------------------------------------

  function requestBody() {
    var transfer = { direction: "receive", paths: [{ source: order.source }] };
    if (order.destination) transfer.destination_root = order.destination;
    return JSON.stringify({
      orvane_vantrel_settings: { app_id: order.appId },
      transfer_specs: [{
        // An absolute folder would have to be one that the user has chosen in a dialog.
        orvane_vantrel_settings: { use_absolute_destination_path: false },
        transfer_spec: transfer
      }]
    });
  }

  function receive() {
    element("card").className = "";
    element("receive").disabled = true;
    show("error", "");
    show("status", "Starting");
    transferId = "";
    // The answer comes through the function; only a refused request is answered at once.
    var refusal = plugin.vantrelHttpRequestAsync("POST", "/v5/vantrel/transfers/start",
                                                 requestBody(), onStarted);
    if (refusal) fail(errorText(refusal));
  }

  function onStarted(reply) {
    if (isError(reply)) {
      fail(errorText(reply));
      return;
    }
    transferId = JSON.parse(reply).transfers[0].uuid;
    print("transfer started: " + transferId);
    showTransfer();  // its first activity may have come before this answer
  }

  // ---- Events ---------------------------------------------------------------------------------

  function onEvent(name, payload) {
    if (name !== "transfer") return;
    var transfers = JSON.parse(payload).transfers || [];
    for (var i = 0; i < transfers.length; ++i) latest[transfers[i].uuid] = transfers[i];
    showTransfer();
  }

  function showTransfer() {
    var transfer = latest[transferId];
    if (!transfer) return;
    var line = transfer.status + " " + transfer.percentage + "%";
    if (line === lastLine) return;
    lastLine = line;
    element("bar").style.width = transfer.percentage + "%";
    show("status", transfer.status_text);
    show("amount", transfer.percentage + " %  ·  " + size(transfer.bytes_written) + " of " +
                   size(transfer.bytes_expected));
    addEvent(line + ", " + transfer.bytes_written + " of " + transfer.bytes_expected + " bytes");
    if (transfer.status === "failed") fail(transfer.status_text);
    if (transfer.status === "completed") complete(transfer);
  }

  function complete(transfer) {
    element("card").className = "completed";
    element("receive").disabled = false;
    print("transfer completed: " + transfer.bytes_written + " bytes");
  }

  function addEvent(text) {
    var item = document.createElement("li");
    item.textContent = text;
    element("events").appendChild(item);
    print("progress: " + text);
  }

  function size(bytes) {
    var units = ["bytes", "KiB", "MiB", "GiB"], i = 0;
    while (bytes >= 1024 && i < units.length - 1) { bytes /= 1024; ++i; }
    return (i === 0 ? bytes : bytes.toFixed(1)) + " " + units[i];
  }

  window.onload = start;
}());
