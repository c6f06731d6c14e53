// The script of receive.html; page.js has what it shares with send.html.
(function () {
  "use strict";

  var order = page.readOrder({ source: "/demo.bin", destination: "", start: false });

  function receive() {
    var transfer = { direction: "receive", paths: [{ source: order.source }] };
    if (order.destination) transfer.destination_root = order.destination;
    page.startTransfer(transfer);
  }

  window.onload = function () {
    page.show("source", order.source);
    page.show("destination", "Downloads" + (order.destination ? "/" + order.destination : ""));
    page.element("receive").onclick = receive;
    if (page.start(["receive"]) && order.start) receive();
  };
}());
